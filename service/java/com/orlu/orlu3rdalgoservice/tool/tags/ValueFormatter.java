package com.orlu.orlu3rdalgoservice.tool.tags;

import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonPrimitive;

import java.lang.reflect.Array;
import java.util.ArrayList;
import java.util.List;

/** Writes the values that the native side puts into compositions, for people and as JSON. */
public final class ValueFormatter {
    private static final int ELEMENTS = 8;

    private ValueFormatter() {
    }

    /** On one line, long arrays shortened. */
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

    /** Whole. Numbers that JSON has no form for (NaN, infinity) and objects become texts. */
    public static JsonElement json(Object value) {
        if (value.getClass().isArray()) {
            JsonArray array = new JsonArray();
            for (int i = 0; i < Array.getLength(value); ++i) {
                array.add(json(Array.get(value, i)));
            }
            return array;
        }
        if (value instanceof Boolean flag) {
            return new JsonPrimitive(flag);
        }
        boolean finite = value instanceof Number number && Double.isFinite(number.doubleValue());
        return finite ? new JsonPrimitive((Number) value) : new JsonPrimitive(String.valueOf(value));
    }
}
