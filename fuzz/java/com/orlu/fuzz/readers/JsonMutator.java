package com.orlu.fuzz.readers;

import com.fasterxml.jackson.core.JsonFactory;
import com.fasterxml.jackson.core.JsonParser;
import com.fasterxml.jackson.core.JsonToken;
import com.fasterxml.jackson.core.io.JsonStringEncoder;

import java.io.IOException;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Random;

/**
 * Makes random changes to JSON trees. A tree consists of Maps, Lists and, for each other value, its JSON text
 * as a String. A changed tree may be invalid JSON.
 */
final class JsonMutator {
    private static final JsonFactory FACTORY = new JsonFactory().enable(JsonParser.Feature.ALLOW_COMMENTS);
    private static final int LONG_TEXT = 5000;
    private static final int LONG_BYTES = 30000;
    private static final int DEEP = 2000;
    private static final int MOST_COPIES = 1500;
    /** Values of each kind, within and beyond the limits of the readers; some are invalid JSON. */
    private static final List<String> VALUES = List.of("0", "1", "-1", "2.5", "4", "64", "1e999", "1e-999",
            "1e308", "255", "65536", "2147483647", "-2147483648", "2147483648", "9223372036854775807",
            "-9223372036854775809", "1073741824", "9".repeat(400), "9".repeat(401), "true", "false", "null",
            "NaN", "\"NaN\"", "\"-Infinity\"", "[]", "{}", "[null]", "[1,2,3,4]", "{\"text\":null}",
            "{\"long\":1}", "{\"strings\":[null]}", "{\"rect\":[1,2,3]}", "{\"class\":\"x\",\"text\":\"y\"}",
            "{\"first\":1,\"step\":1e300}", "{\"fill\":1,\"count\":999999999}", "{\"fill\":1.5,\"count\":-1}",
            "\"\"", "\"null\"", "\"x\"", "\"" + "x".repeat(LONG_TEXT) + "\"",
            "{\"bytes\":\"" + "41".repeat(LONG_BYTES) + "\"}", "[".repeat(DEEP), "[".repeat(65)
            + "]".repeat(65), "\"\\ud800\"", "\"a\\u0000b\"", "\"\\u001b[2J\"", "\"\\r\\n\"",
            "\"\\u009b\\u202e\"", "\"\u202e\u0085\u2028\"", "\"NV21\"", "\"JPEG\"", "\"hardware\"");

    private final Random mChance;
    private final List<String> mValues;

    /** Adds values to the pool. Each value is a JSON text. */
    JsonMutator(Random chance, List<String> values) {
        mChance = chance;
        mValues = new ArrayList<>(VALUES);
        // Repeats or drops added values, so that they are a fifth of the pool.
        for (int i = 0; i < VALUES.size() / 4; ++i) {
            mValues.add(values.get(i % values.size()));
        }
    }

    /** Parses a text; throws if it is not JSON. */
    static Object parse(String text) throws IOException {
        try (JsonParser parser = FACTORY.createParser(text)) {
            return value(parser, parser.nextToken());
        }
    }

    private static Object value(JsonParser parser, JsonToken token) throws IOException {
        if (token == null) {
            throw new IOException("no value");
        } else if (token == JsonToken.START_OBJECT) {
            Map<String, Object> members = new LinkedHashMap<>();
            while (parser.nextToken() != JsonToken.END_OBJECT) {
                String name = parser.currentName();
                members.put(name, value(parser, parser.nextToken()));
            }
            return members;
        } else if (token == JsonToken.START_ARRAY) {
            List<Object> elements = new ArrayList<>();
            JsonToken next = parser.nextToken();
            for (; next != JsonToken.END_ARRAY; next = parser.nextToken()) {
                elements.add(value(parser, next));
            }
            return elements;
        }
        return token == JsonToken.VALUE_STRING ? quoted(parser.getText()) : parser.getText();
    }

    static String quoted(String text) {
        return '"' + new String(JsonStringEncoder.getInstance().quoteAsString(text)) + '"';
    }

    /** Returns a tree as one line, or with a line for each member and element of the outer three levels. */
    static String text(Object tree, boolean isLine) {
        StringBuilder text = new StringBuilder();
        append(text, tree, isLine ? 0 : 3);
        return text.toString();
    }

    private static void append(StringBuilder to, Object value, int levels) {
        String next = levels > 0 ? ",\n" : ",";
        if (value instanceof Map<?, ?> members) {
            String separator = "{";
            for (Map.Entry<?, ?> member : members.entrySet()) {
                to.append(separator).append(quoted((String) member.getKey())).append(':');
                append(to, member.getValue(), levels - 1);
                separator = next;
            }
            to.append(members.isEmpty() ? "{}" : "}");
        } else if (value instanceof List<?> elements) {
            String separator = "[";
            for (Object element : elements) {
                to.append(separator);
                append(to, element, levels - 1);
                separator = next;
            }
            to.append(elements.isEmpty() ? "[]" : "]");
        } else {
            to.append(value);
        }
    }

    private <T> T one(List<T> all) {
        return all.get(mChance.nextInt(all.size()));
    }

    /** Returns a changed tree. */
    @SuppressWarnings("unchecked")
    Object mutate(Object tree) {
        if (tree instanceof Map<?, ?> members && !members.isEmpty()) {
            Map<String, Object> changed = new LinkedHashMap<>((Map<String, Object>) members);
            String name = one(new ArrayList<>(changed.keySet()));
            if (isHere(changed.get(name))) {
                changeMember(changed, name);
            } else {
                changed.put(name, mutate(changed.get(name)));
            }
            return changed;
        } else if (tree instanceof List<?> elements && !elements.isEmpty()) {
            List<Object> changed = new ArrayList<>(elements);
            int index = mChance.nextInt(changed.size());
            if (isHere(changed.get(index))) {
                changeElement(changed, index);
            } else {
                changed.set(index, mutate(changed.get(index)));
            }
            return changed;
        }
        return other(tree);
    }

    private boolean isHere(Object child) {
        return !(child instanceof Map || child instanceof List) || mChance.nextInt(6) == 0;
    }

    private void changeMember(Map<String, Object> members, String name) {
        switch (mChance.nextInt(8)) {
            case 0 -> members.remove(name);
            case 1 -> members.put(name, members.get(one(new ArrayList<>(members.keySet()))));
            case 2 -> members.put(otherName(name), members.get(name));
            case 3 -> members.put(otherName(name), members.remove(name));
            default -> members.put(name, other(members.get(name)));
        }
    }

    private String otherName(String name) {
        return one(List.of("", name + "x", name.substring(name.length() / 2), "\u001b[2J", "\u202ea", "file",
                "a".repeat(LONG_TEXT), "int", "long", "text", "frames", "orlu.control.algoType",
                "android.jpeg.gpsLocation", "../../canary"));
    }

    private void changeElement(List<Object> elements, int index) {
        switch (mChance.nextInt(6)) {
            case 0 -> elements.remove(index);
            case 1 -> elements.add(index, one(elements));
            case 2 -> {
                Object copied = elements.get(index);
                for (int i = mChance.nextInt(MOST_COPIES); i > 0 && !(copied instanceof Map<?, ?> map
                        && map.size() > 10 && i > 100); --i) {
                    elements.add(copied);
                }
            }
            default -> elements.set(index, other(elements.get(index)));
        }
    }

    // Alters half of the strings, numbers and literals. For all other values, returns a value of the pool.
    private Object other(Object value) {
        if (value instanceof String text && mChance.nextBoolean()) {
            return text.startsWith("\"") ? otherText(text) : otherNumber(text);
        }
        return one(mValues);
    }

    private String otherText(String text) {
        int at = 1 + mChance.nextInt(text.length() - 1);
        String piece = one(List.of("\\u001b", "\u202e", "/", "..", "\\n", "x", " ", "0", "\\ud83d",
                "\u0085"));
        // This may cut an escape sequence.
        return text.substring(0, at) + piece
                + (mChance.nextBoolean() ? text.substring(at) : text.substring(Math.min(at + 1,
                text.length() - 1)));
    }

    private String otherNumber(String text) {
        String sign = text.startsWith("-") ? text.substring(1) : "-" + text;
        return one(List.of(sign, text + "0", text + "1", text + "e5", text + ".5", "1", "0", "3",
                text.substring(0, (text.length() + 1) / 2)));
    }
}
