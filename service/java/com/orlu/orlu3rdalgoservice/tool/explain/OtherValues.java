package com.orlu.orlu3rdalgoservice.tool.explain;

import android.graphics.Rect;
import android.hardware.camera2.impl.TagType;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.util.Rational;

import java.lang.reflect.Array;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.function.Consumer;
import java.util.stream.LongStream;

/**
 * The values to which trials change a tag, most revealing first. Neighbours and opposite signs reveal sums
 * and thresholds, single changed bits reveal flags, and small numbers reveal modes. Arrays also get fewer
 * and more elements.
 */
final class OtherValues {
    private static final long[] SMALL = LongStream.rangeClosed(-2, 16).toArray();
    private static final long[] LARGE = {20, 24, 32, 50, 64, 90, 100, 128, 180, 256, 270, 1000, 10_000,
        1_000_000, Integer.MAX_VALUE, Integer.MIN_VALUE};
    private static final double[] FACTORS = {1.5, 0.5, -1, 1.001, 10, 0.1, 100, 0.01};
    private static final int INT_BITS = 31;
    private static final int LONG_BITS = 63;
    /** At most this many leading elements of an array are also changed one by one. */
    private static final int ELEMENTS = 64;
    /** Lengths of arrays that are tried for an absent tag. */
    private static final int[] LENGTHS = {16, 1, 2, 3, 4, 8, 9, 256};
    private static final int[] BYTE_LENGTHS = {4096, 4, 8, 16, 64, 512};

    private final List<Object> mValues = new ArrayList<>();

    /** Returns values of the same class as `held`. The first value is null, which removes the tag. */
    static List<Object> insteadOf(Object held) {
        OtherValues others = new OtherValues();
        others.mValues.add(null);
        others.addOthers(held);
        return others.mValues;
    }

    /** Returns values for an absent tag. */
    static List<Object> of(TagType type) {
        OtherValues others = new OtherValues();
        for (Object example : examples(type)) {
            others.add(example);
        }
        others.addOthers(examples(type).get(0));
        return others.mValues;
    }

    private static List<Object> examples(TagType type) {
        return switch (type) {
            case INT -> List.of(1, 0, 3);
            case LONG -> List.of(1L, 0L, 3L);
            case FLOAT -> List.of(1.5f, 0f, 1f, 20f);
            case DOUBLE -> List.of(1.5, 0.0, 1.0, 20.0);
            case STRING -> List.of("1", "0", "text");
            case RECT -> List.of(new Rect(10, 20, 310, 420), new Rect(0, 0, 8000, 6000));
            case RATIONAL -> List.of(new Rational(1, 3));
            case LOCATION -> List.of(place(new Location("trial"), place -> place.setLatitude(1)));
            case FACES -> List.of((Object) new Face[] {face(100, 200), face(300, 300)});
            case METERING_RECTANGLES -> List.of((Object) new MeteringRectangle[] {region(100, 200)});
            default -> arrays(type.stored().getComponentType());
        };
    }

    private static List<Object> arrays(Class<?> component) {
        List<Object> arrays = new ArrayList<>();
        for (int length : component == byte.class ? BYTE_LENGTHS : LENGTHS) {
            Object array = Array.newInstance(component, length);
            for (int i = 0; i < length; ++i) {
                Array.set(array, i, element(component, i + 1));
            }
            arrays.add(array);
        }
        return arrays;
    }

    private static Object element(Class<?> component, int number) {
        if (component == String.class) {
            return "text" + number;
        }
        return ofClass(component, number);
    }

    private static Object ofClass(Class<?> type, double number) {
        if (type == int.class || type == Integer.class) {
            return (int) number;
        }
        if (type == long.class || type == Long.class) {
            return (long) number;
        }
        if (type == float.class || type == Float.class) {
            return (float) number;
        }
        return type == byte.class || type == Byte.class ? (Object) (byte) number : (Object) number;
    }

    // Adds the value unless it is already present: several rules can produce the same number. Does not detect
    // equal arrays.
    private void add(Object value) {
        if (!mValues.contains(value)) {
            mValues.add(value);
        }
    }

    private void addOthers(Object value) {
        if (value instanceof Integer number) {
            addWholes(number, INT_BITS, changed -> add((int) changed.longValue()));
        } else if (value instanceof Long number) {
            addWholes(number, LONG_BITS, this::add);
        } else if (value instanceof Float || value instanceof Double) {
            addFractions(((Number) value).doubleValue(), value.getClass());
        } else if (value instanceof Boolean flag) {
            add(!flag);
        } else if (value instanceof String text) {
            addTexts(text);
        } else if (value instanceof Rect rect) {
            rects(rect).forEach(this::add);
        } else if (value instanceof Face face) {
            rects(face.getBounds()).forEach(bounds -> add(new Face(bounds, face.getScore())));
        } else if (value instanceof MeteringRectangle region) {
            rects(region.getRect()).forEach(
                    rect -> add(new MeteringRectangle(rect, region.getMeteringWeight())));
            add(new MeteringRectangle(region.getRect(), 0));
        } else if (value instanceof Rational rational) {
            add(new Rational(rational.getNumerator() + 1, rational.getDenominator()));
            add(new Rational(rational.getNumerator(), rational.getDenominator() + 1));
        } else if (value instanceof Location location) {
            addLocations(location);
        } else if (value.getClass().isArray()) {
            addArrays(value);
        }
    }

    private void addWholes(long number, int bits, Consumer<Long> adder) {
        adder.accept(number + 1);
        adder.accept(number == 0 ? 2L : 0L);
        adder.accept(-number - 1);
        adder.accept(number - 1);
        adder.accept(number * 2 + 1);
        for (int bit = 0; bit <= bits; ++bit) {
            adder.accept(number ^ 1L << bit);
        }
        Arrays.stream(SMALL).forEach(adder::accept);
        Arrays.stream(LARGE).forEach(adder::accept);
    }

    private void addFractions(double number, Class<?> type) {
        add(ofClass(type, number + 1));
        add(ofClass(type, 0));
        for (double factor : FACTORS) {
            add(ofClass(type, number * factor));
        }
        for (long small : SMALL) {
            add(ofClass(type, small));
        }
        add(ofClass(type, 1e9));
    }

    private void addTexts(String text) {
        add(text + "1");
        add("");
        add("0");
        add("1");
        add(text.isEmpty() ? "a" : text.substring(1));
    }

    private static List<Rect> rects(Rect rect) {
        List<Rect> others = new ArrayList<>();
        int[][] moves = {{1, 1, 1, 1}, {1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1},
            {100, 100, -100, -100}, {-900, -900, 900, 900}};
        for (int[] move : moves) {
            others.add(new Rect(rect.left + move[0], rect.top + move[1], rect.right + move[2],
                    rect.bottom + move[3]));
        }
        others.add(new Rect());
        return others;
    }

    private void addLocations(Location location) {
        add(place(new Location(location), place -> place.setLatitude(location.getLatitude() + 1)));
        add(place(new Location(location), place -> place.setLongitude(location.getLongitude() + 1)));
        add(place(new Location(location), place -> place.setAltitude(location.getAltitude() + 1)));
        add(place(new Location(location), place -> place.setTime(location.getTime() + 1000)));
    }

    private static Location place(Location place, Consumer<Location> change) {
        change.accept(place);
        return place;
    }

    private static Face face(int left, int top) {
        return new Face(new Rect(left, top, left + 500, top + 600), 50);
    }

    private static MeteringRectangle region(int left, int top) {
        return new MeteringRectangle(new Rect(left, top, left + 500, top + 600), 500);
    }

    private void addArrays(Object array) {
        int length = Array.getLength(array);
        add(changed(array, 0, length));
        add(resized(array, Math.max(0, length - 1)));
        add(resized(array, length + 1));
        add(resized(array, 0));
        for (int i = 0; i < Math.min(length, ELEMENTS); ++i) {
            add(changed(array, i, i + 1));
            if (array instanceof Object[] objects) {
                add(without(objects, i));
            }
        }
        if (length > 0) {
            addElements(array);
        }
    }

    // Adds copies of the array, each with a different first element.
    private void addElements(Object array) {
        OtherValues elements = new OtherValues();
        elements.addOthers(array instanceof byte[] bytes ? (Object) (int) bytes[0] : Array.get(array, 0));
        for (Object element : elements.mValues) {
            Object copy = resized(array, Array.getLength(array));
            Array.set(copy, 0, array instanceof byte[] ? (byte) (int) element : element);
            add(copy);
        }
    }

    private static Object changed(Object array, int from, int to) {
        Object copy = resized(array, Array.getLength(array));
        for (int i = from; i < to; ++i) {
            Array.set(copy, i, other(Array.get(array, i)));
        }
        return copy;
    }

    private static Object other(Object element) {
        if (element instanceof Face face) {
            return new Face(rects(face.getBounds()).get(0), face.getScore());
        }
        if (element instanceof MeteringRectangle region) {
            return new MeteringRectangle(rects(region.getRect()).get(0), region.getMeteringWeight() + 1);
        }
        if (element instanceof Long number) {
            return number + 1;
        }
        return element instanceof Number number
                ? ofClass(element.getClass(), number.doubleValue() + 1) : element + "1";
    }

    // Returns a copy of this length. New elements repeat the last element; if the array is empty, they repeat
    // the first example element for an absent tag.
    private static Object resized(Object array, int length) {
        int kept = Math.min(length, Array.getLength(array));
        Class<?> component = array.getClass().getComponentType();
        Object copy = Array.newInstance(component, length);
        System.arraycopy(array, 0, copy, 0, kept);
        for (int i = kept; i < length; ++i) {
            Array.set(copy, i, kept > 0 ? Array.get(array, kept - 1) : first(component));
        }
        return copy;
    }

    private static Object first(Class<?> component) {
        if (component == Face.class) {
            return face(100, 200);
        }
        return component == MeteringRectangle.class ? region(100, 200) : element(component, 1);
    }

    private static Object without(Object[] array, int index) {
        Object[] copy = Arrays.copyOf(array, array.length - 1);
        System.arraycopy(array, index + 1, copy, index, copy.length - index);
        return copy;
    }
}
