package com.orlu.orlu3rdalgoservice.record;

import com.fasterxml.jackson.core.io.JsonStringEncoder;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.lang.reflect.Array;
import java.util.Iterator;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.stream.IntStream;

/**
 * Writes JSON. A value is a Json, a Map with string keys, an Iterable, an array, a String, a Number, a
 * Boolean or null. JSON lacks NaN and the infinities, which become texts. Control characters are escaped.
 */
public final class JsonWriter {
    private static final String INDENT = "  ";

    private final StringBuilder mText = new StringBuilder();
    private final boolean mIsPretty;

    private JsonWriter(boolean isPretty) {
        mIsPretty = isPretty;
    }

    /** Returns the value on one line, without a line end. */
    public static String line(Object value) {
        JsonWriter writer = new JsonWriter(false);
        writer.write(value, "\n");
        return writer.mText.toString();
    }

    /**
     * Returns the value formatted for a file: one member or element per line, indented by two spaces per
     * level.
     */
    public static String pretty(Object value) {
        JsonWriter writer = new JsonWriter(true);
        writer.write(value, "\n");
        return writer.mText.append('\n').toString();
    }

    /** Returns an object with these names and values in their order: object("id", 1, "type", "capture"). */
    public static Map<String, Object> object(Object... namesAndValues) {
        Map<String, Object> object = new LinkedHashMap<>();
        for (int i = 0; i < namesAndValues.length; i += 2) {
            object.put((String) namesAndValues[i], namesAndValues[i + 1]);
        }
        return object;
    }

    private void write(Object value, String newLine) {
        if (value instanceof Json json) {
            write(json.content(), newLine);
        } else if (value instanceof Map<?, ?> members) {
            writeAll('{', members.entrySet().iterator(), '}', newLine);
        } else if (value instanceof Map.Entry<?, ?> member) {
            writeText((String) member.getKey());
            mText.append(mIsPretty ? ": " : ":");
            write(member.getValue(), newLine);
        } else if (value instanceof Iterable<?> elements) {
            writeAll('[', elements.iterator(), ']', newLine);
        } else if (value != null && value.getClass().isArray()) {
            writeAll('[', IntStream.range(0, Array.getLength(value)).mapToObj(i -> Array.get(value, i))
                    .iterator(), ']', newLine);
        } else if (value instanceof String || isWithoutForm(value)) {
            writeText(String.valueOf(value));
        } else if (value instanceof Number || value instanceof Boolean || value == null) {
            // BigDecimal writes a plus in the exponent, double does not.
            mText.append(String.valueOf(value).replace("E+", "E"));
        } else {
            throw new IllegalArgumentException("no JSON for " + value.getClass());
        }
    }

    private static boolean isWithoutForm(Object value) {
        return value instanceof Double real && !Double.isFinite(real)
                || value instanceof Float single && !Float.isFinite(single);
    }

    private void writeAll(char open, Iterator<?> parts, char close, String newLine) {
        String inner = newLine + INDENT;
        mText.append(open);
        boolean isEmpty = !parts.hasNext();
        while (parts.hasNext()) {
            mText.append(mIsPretty ? inner : "");
            write(parts.next(), inner);
            mText.append(parts.hasNext() ? "," : "");
        }
        mText.append(mIsPretty && !isEmpty ? newLine : "").append(close);
    }

    private void writeText(String text) {
        StringBuilder quoted = new StringBuilder();
        JsonStringEncoder.getInstance().quoteAsString(text, quoted);
        mText.append('"').append(Printable.line(quoted.toString())).append('"');
    }
}
