package com.orlu.orlu3rdalgoservice.record;

import android.graphics.Rect;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.util.Rational;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** Converts metadata values to the forms that request files use, for JsonWriter. */
public final class HeldValue {
    private static final char[] HEX = "0123456789abcdef".toCharArray();
    private static final Map<Class<?>, String> TYPE_NAMES = Map.ofEntries(
            Map.entry(Integer.class, "int"),
            Map.entry(Long.class, "long"),
            Map.entry(Float.class, "float"),
            Map.entry(Double.class, "double"),
            Map.entry(Boolean.class, "boolean"),
            Map.entry(String.class, "string"),
            Map.entry(byte[].class, "bytes"),
            Map.entry(int[].class, "ints"),
            Map.entry(long[].class, "longs"),
            Map.entry(float[].class, "floats"),
            Map.entry(double[].class, "doubles"),
            Map.entry(String[].class, "strings"),
            Map.entry(Rect.class, "rect"),
            Map.entry(Face[].class, "faces"),
            Map.entry(MeteringRectangle[].class, "regions"),
            Map.entry(Location.class, "location"),
            Map.entry(Rational.class, "rational"));

    private HeldValue() {
    }

    /** Returns the name that request files use for values of a class; null if there is none. */
    public static String typeName(Class<?> stored) {
        return TYPE_NAMES.get(stored);
    }

    /** Returns a value in the form of request files; for classes without a form, a list or toString(). */
    public static Object json(Object value) {
        if (value instanceof byte[] bytes) {
            return hexadecimal(bytes);
        }
        if (value instanceof Object[] objects) {
            List<Object> elements = new ArrayList<>();
            for (Object object : objects) {
                elements.add(json(object));
            }
            return elements;
        }
        if (value instanceof Rational rational) {
            // Tested before Number, since the platform's Rational is a Number.
            return new int[] {rational.getNumerator(), rational.getDenominator()};
        }
        if (value == null || value instanceof Number || value instanceof Boolean) {
            return value;
        }
        return value.getClass().isArray() ? value : object(value);
    }

    private static String hexadecimal(byte[] bytes) {
        StringBuilder text = new StringBuilder(2 * bytes.length);
        for (byte b : bytes) {
            text.append(HEX[b >> 4 & 15]).append(HEX[b & 15]);
        }
        return text.toString();
    }

    private static Object object(Object value) {
        if (value instanceof Rect rect) {
            return new int[] {rect.left, rect.top, rect.right, rect.bottom};
        }
        if (value instanceof Face face) {
            return sides(face.getBounds(), "score", face.getScore());
        }
        if (value instanceof MeteringRectangle region) {
            return sides(region.getRect(), "weight", region.getMeteringWeight());
        }
        return value instanceof Location location ? place(location) : value.toString();
    }

    private static Map<String, Object> sides(Rect rect, String name, int number) {
        return JsonWriter.object("left", rect.left, "top", rect.top, "right", rect.right,
                "bottom", rect.bottom, name, number);
    }

    private static Map<String, Object> place(Location location) {
        Map<String, Object> place = new LinkedHashMap<>();
        if (location.getProvider() != null) {
            place.put("provider", location.getProvider());
        }
        place.put("latitude", location.getLatitude());
        place.put("longitude", location.getLongitude());
        if (location.hasAltitude()) {
            place.put("altitude", location.getAltitude());
        }
        place.put("time", location.getTime());
        return place;
    }

    /**
     * Converts each value to an object that names its type, such as {"long": 5}, so that it can be read back;
     * null stays null. A value of a class without a type name becomes {"class": the class, "text": the result
     * of toString()}. If the conversion throws or an element is null, the value has the same form, with the
     * reason as "text".
     */
    static Map<String, Object> typed(Map<String, ?> values) {
        Map<String, Object> typed = new LinkedHashMap<>();
        values.forEach((name, value) -> {
            try {
                typed.put(name, value == null ? null : withType(value));
            } catch (RuntimeException e) {
                typed.put(name, other(value, "can't be read: " + e.getClass().getName()));
            }
        });
        return typed;
    }

    private static Map<String, Object> withType(Object value) {
        String type = typeName(value.getClass());
        if (type == null) {
            return other(value, String.valueOf(value));
        }
        if (value instanceof Object[] objects && Arrays.asList(objects).contains(null)) {
            return other(value, "can't be read: an element is null");
        }
        return JsonWriter.object(type, json(value));
    }

    private static Map<String, Object> other(Object value, String text) {
        return JsonWriter.object("class", value.getClass().getName(), "text", text);
    }
}
