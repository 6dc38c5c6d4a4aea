package com.orlu.fuzz;

import android.graphics.Rect;
import android.hardware.camera2.impl.TagType;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.util.Rational;
import java.lang.reflect.Array;
import java.util.List;
import java.util.Random;

/** Java values as a client may send them, from one seed. */
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

    private final Random mRandom;

    HostileValues(Random random) {
        mRandom = random;
    }

    /** True in {@code percent} of 100 cases. */
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

    String text() {
        String piece = TEXTS[below(TEXTS.length)];
        return chance(90) ? piece : (piece + "\u20acx").repeat(1 + below(chance(10) ? 100_000 : 200));
    }

    int length() {
        return chance(1) ? LONG_ARRAY_LENGTH : LENGTHS[below(LENGTHS.length)];
    }

    Rect rect() {
        if (chance(50)) {
            return new Rect(below(100), below(100), 100 + below(5000), 100 + below(5000));
        }
        return new Rect(anInt(), anInt(), anInt(), anInt());
    }

    /** A value of any class at all, null too. */
    Object anything() {
        switch (below(6)) {
            case 0:
                return null;
            case 1:
                return new Object();
            case 2:
                return HostileList.ofAnything(this);
            case 3:
                return boxedWithNulls();
            default:
                return valueOf(TagType.values()[below(TagType.values().length)]);
        }
    }

    /** A value of the class in which a tag of this type is stored. */
    Object valueOf(TagType type) {
        return one(type.stored());
    }

    private Object one(Class<?> type) {
        if (type.isArray()) {
            return array(type.getComponentType(), length(), 0);
        }
        if (type == Integer.class || type == int.class) {
            return anInt();
        }
        if (type == Long.class || type == long.class) {
            return aLong();
        }
        if (type == Float.class || type == float.class) {
            return aFloat();
        }
        if (type == Double.class || type == double.class) {
            return chance(30) ? 1_000_000.0 : (double) aFloat();
        }
        if (type == byte.class) {
            return (byte) mRandom.nextInt();
        }
        if (type == Rect.class) {
            return rect();
        }
        if (type == Face.class) {
            return new Face(rect(), 1);
        }
        if (type == MeteringRectangle.class) {
            return new MeteringRectangle(rect(), anInt());
        }
        if (type == Rational.class) {
            return new Rational(anInt(), anInt());
        }
        if (type == Location.class) {
            return location();
        }
        return text();
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
        // Beyond the first elements a long array is all alike, so that making it costs little.
        Object last = null;
        for (int i = 0; i < length; i++) {
            if (i < 100 && !chance(percentOfNulls)) {
                last = one(component);
            } else if (percentOfNulls > 0) {
                last = null;
            }
            Array.set(array, i, last);
        }
        return array;
    }

    private Object boxedWithNulls() {
        Class<?>[] components = {Integer.class, Long.class, Float.class, Double.class, String.class,
            Face.class, MeteringRectangle.class};
        return array(components[below(components.length)], length(), 30);
    }

    Object boxed(TagType type) {
        Class<?> component = type.stored().getComponentType();
        boolean isNumber = component != null && component.isPrimitive() && component != byte.class;
        Class<?> element = component == int.class ? Integer.class : component == long.class ? Long.class
                : component == float.class ? Float.class : Double.class;
        return isNumber ? array(element, length(), below(30)) : valueOf(type);
    }
}
