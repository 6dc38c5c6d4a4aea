package com.orlu.orlu3rdalgoservice.tool.tags;

import java.lang.reflect.Array;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/** Formats Java values of parameters, callbacks and compositions, as text or for JSON. */
public final class ValueFormatter {
    private static final int ELEMENTS = 8;

    private ValueFormatter() {
    }

    /** Returns the value as text, with long arrays shortened. */
    public static String text(Object value) {
        if (!value.getClass().isArray()) {
            return value instanceof String ? '"' + (String) value + '"' : value.toString();
        }
        int length = Array.getLength(value);
        List<String> parts = new ArrayList<>();
        for (int i = 0; i < Math.min(length, ELEMENTS); ++i) {
            parts.add(String.valueOf(Array.get(value, i)));
        }
        String rest = length > ELEMENTS ? ", ... " + length + " in all" : "";
        return "[" + String.join(", ", parts) + rest + "]";
    }

    /**
     * Converts a value for a JSON writer: object arrays to lists, and other objects to strings. Numbers,
     * booleans and arrays of primitives stay as they are.
     */
    public static Object json(Object value) {
        if (value instanceof Object[] objects) {
            return Arrays.stream(objects).map(ValueFormatter::json).toList();
        }
        boolean isPlain = value instanceof Number || value instanceof Boolean || value.getClass().isArray();
        return isPlain ? value : String.valueOf(value);
    }
}
