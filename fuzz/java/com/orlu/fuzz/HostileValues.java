package com.orlu.fuzz;

import android.graphics.Rect;
import android.hardware.camera2.impl.TagType;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.util.Rational;
import java.lang.reflect.Array;
import java.util.List;
import java.util.Map;
import java.util.Random;
import java.util.function.Supplier;

/** Random Java values as a client may send them. */
final class HostileValues {
    private static final int[] INTS = {0, 1, -1, 2, 3, 4, 5, 6, 7, 8, 16, 64, 255, 4096, 1 << 20, 1 << 30,
        Integer.MAX_VALUE, Integer.MIN_VALUE, Integer.MAX_VALUE - 1, Integer.MIN_VALUE + 1, 46341, 65536};
    private static final float[] FLOATS = {0, -0.0F, 1, -1, 0.5F, 1e-40F, 1e30F, Float.MAX_VALUE,
        Float.MIN_VALUE, Float.NaN, Float.POSITIVE_INFINITY, Float.NEGATIVE_INFINITY, 2147483648F};
    private static final int[] LENGTHS = {0, 0, 1, 1, 2, 3, 4, 9, 22, 64, 65, 1000};
    private static final int LONG_ARRAY_LENGTH = 100_000;
    private static final String[] TEXTS = {"", "a", "Master", "SAT", "Bokeh", "NV21",
        "orlu.control.frameFlag", "orlu.control.frameFlagAndMore", "0x7fffffffffffffff", "\u0000", "a\u0000b",
        "\u00e9\u4e2d", "\ud83d\ude00", "\ud800", "%s%n%p", "version", "paramfile x"};

    private static final Map<Class<?>, Class<?>> BOXES = Map.of(int[].class, Integer.class,
            long[].class, Long.class, float[].class, Float.class, double[].class, Double.class);
    private static final List<Class<?>> NULLABLE = List.of(Integer.class, Long.class, Float.class,
            Double.class, String.class, Face.class, MeteringRectangle.class);

    private final Random mRandom;
    private final Map<Class<?>, Supplier<Object>> mMakers = Map.ofEntries(
            Map.entry(int.class, this::anInt),
            Map.entry(Integer.class, this::anInt),
            Map.entry(long.class, this::aLong),
            Map.entry(Long.class, this::aLong),
            Map.entry(float.class, this::aFloat),
            Map.entry(Float.class, this::aFloat),
            Map.entry(double.class, this::aDouble),
            Map.entry(Double.class, this::aDouble),
            Map.entry(byte.class, () -> (byte) anInt()),
            Map.entry(String.class, this::text),
            Map.entry(Rect.class, this::rect),
            Map.entry(Face.class, () -> new Face(rect(), 1)),
            Map.entry(MeteringRectangle.class, () -> new MeteringRectangle(rect(), anInt())),
            Map.entry(Rational.class, () -> new Rational(anInt(), anInt())),
            Map.entry(Location.class, this::location));

    HostileValues(Random random) {
        mRandom = random;
    }

    /** Returns true in {@code percent} of 100 cases. */
    boolean chance(int percent) {
        return mRandom.nextInt(100) < percent;
    }

    int below(int bound) {
        return mRandom.nextInt(bound);
    }

    <T> T pick(List<T> choices) {
        return choices.get(below(choices.size()));
    }

    int anInt() {
        return chance(70) ? INTS[below(INTS.length)] : mRandom.nextInt();
    }

    long aLong() {
        return chance(50) ? anInt() : chance(50) ? mRandom.nextLong() : Long.MIN_VALUE;
    }

    float aFloat() {
        return chance(60) ? FLOATS[below(FLOATS.length)] : Float.intBitsToFloat(mRandom.nextInt());
    }

    private double aDouble() {
        return chance(30) ? 1_000_000.0 : aFloat();
    }

    String text() {
        String piece = TEXTS[below(TEXTS.length)];
        return chance(90) ? piece : (piece + "\u20acx").repeat(1 + below(chance(10) ? 100_000 : 200));
    }

    int length() {
        return chance(1) ? LONG_ARRAY_LENGTH : LENGTHS[below(LENGTHS.length)];
    }

    Rect rect() {
        return chance(50) ? new Rect(below(100), below(100), 100 + below(5000), 100 + below(5000))
                : new Rect(anInt(), anInt(), anInt(), anInt());
    }

    /** Returns null, an Object, a list, an array with some null elements, or a value of a random tag type. */
    Object anything() {
        return switch (below(6)) {
            case 0 -> null;
            case 1 -> new Object();
            case 2 -> new HostileList(List.of(text(), text(), text()).subList(0, below(4)), this);
            case 3 -> array(pick(NULLABLE), length(), 30);
            default -> valueOf(pick(List.of(TagType.values())));
        };
    }

    /** Returns a random value of the class that stores tags of this type. */
    Object valueOf(TagType type) {
        return one(type.stored());
    }

    private Object one(Class<?> type) {
        return type.isArray() ? array(type.getComponentType(), length(), 0) : mMakers.get(type).get();
    }

    private Location location() {
        Location location = new Location("gps");
        location.setLatitude(aFloat());
        location.setLongitude(aFloat());
        location.setAltitude(aFloat());
        location.setTime(aLong());
        return location;
    }

    private Object array(Class<?> component, int length, int percentOfNulls) {
        Object array = Array.newInstance(component, length);
        // The hundredth element is repeated to the end, so that a long array is cheap to create.
        Object last = null;
        for (int i = 0; i < length; i++) {
            if (i < 100) {
                last = chance(percentOfNulls) ? null : one(component);
            }
            Array.set(array, i, last);
        }
        return array;
    }

    /** Like valueOf(), but int, long, float and double arrays become arrays of boxed values and nulls. */
    Object boxed(TagType type) {
        Class<?> element = BOXES.get(type.stored());
        return element == null ? valueOf(type) : array(element, length(), below(30));
    }
}
