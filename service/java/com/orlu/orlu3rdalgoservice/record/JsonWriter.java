package com.orlu.orlu3rdalgoservice.record;

import java.lang.reflect.Array;
import java.util.Iterator;
import java.util.LinkedHashMap;
import java.util.Locale;
import java.util.Map;
import java.util.stream.IntStream;

/**
 * Writes JSON. A value is a Map with string keys, an Iterable, an array, a String, a Number, a Boolean, null
 * or a Source of such a value. NaN and infinities become strings. Unsafe characters are escaped.
 */
public final class JsonWriter {
    private static final String INDENT = "  ";
    /** Characters with a short escape; below, the letters of these escapes. */
    private static final String SHORT = "\"\\\b\t\n\f\r";
    private static final String SHORT_LETTERS = "\"\\btnfr";

    private final StringBuilder mText = new StringBuilder();
    private final int mLevels;

    /** An object that is written as its content. */
    public interface Source {
        Object content();
    }

    private JsonWriter(int levels) {
        mLevels = levels;
    }

    /** Returns the value on one line, without a line end. */
    public static String line(Object value) {
        return new JsonWriter(0).write(value, 0).toString();
    }

    /** Formats the value for a file: one member or element per line, indented by two spaces per level. */
    public static String pretty(Object value) {
        return pretty(value, Integer.MAX_VALUE);
    }

    /** Formats the value for a file; only the `levels` outermost levels are broken into lines. */
    public static String pretty(Object value, int levels) {
        return new JsonWriter(levels).write(value, 0).append('\n').toString();
    }

    /** Returns an object with these names and values in their order: object("id", 1, "type", "capture"). */
    public static Map<String, Object> object(Object... namesAndValues) {
        Map<String, Object> object = new LinkedHashMap<>();
        for (int i = 0; i < namesAndValues.length; i += 2) {
            object.put((String) namesAndValues[i], namesAndValues[i + 1]);
        }
        return object;
    }

    private StringBuilder write(Object value, int level) {
        if (value instanceof Source source) {
            write(source.content(), level);
        } else if (value instanceof Map<?, ?> members) {
            writeAll('{', members.entrySet().iterator(), '}', level);
        } else if (value instanceof Map.Entry<?, ?> member) {
            writeText((String) member.getKey());
            mText.append(mLevels > 0 ? ": " : ":");
            write(member.getValue(), level);
        } else if (value instanceof Iterable<?> elements) {
            writeAll('[', elements.iterator(), ']', level);
        } else if (value != null && value.getClass().isArray()) {
            writeAll('[', IntStream.range(0, Array.getLength(value)).mapToObj(i -> Array.get(value, i))
                    .iterator(), ']', level);
        } else if (value instanceof String || isWithoutForm(value)) {
            writeText(String.valueOf(value));
        } else if (value instanceof Number || value instanceof Boolean || value == null) {
            // BigDecimal writes a plus sign in the exponent, double does not.
            mText.append(String.valueOf(value).replace("E+", "E"));
        } else {
            throw new IllegalArgumentException("no JSON for " + value.getClass());
        }
        return mText;
    }

    private static boolean isWithoutForm(Object value) {
        return value instanceof Double real && !Double.isFinite(real)
                || value instanceof Float single && !Float.isFinite(single);
    }

    private void writeAll(char open, Iterator<?> parts, char close, int level) {
        boolean isSpread = level < mLevels && parts.hasNext();
        mText.append(open);
        while (parts.hasNext()) {
            breakLine(isSpread, level + 1);
            write(parts.next(), level + 1);
            mText.append(parts.hasNext() ? "," : "");
        }
        breakLine(isSpread, level);
        mText.append(close);
    }

    // String.repeat() is missing on older phones.
    private void breakLine(boolean isSpread, int level) {
        if (isSpread) {
            mText.append('\n');
            IntStream.range(0, level).forEach(i -> mText.append(INDENT));
        }
    }

    private void writeText(String text) {
        mText.append('"');
        text.codePoints().forEach(c -> {
            int escape = SHORT.indexOf(c);
            if (escape >= 0) {
                mText.append('\\').append(SHORT_LETTERS.charAt(escape));
            } else if (isUnsafe(c)) {
                mText.append(String.format(Locale.ROOT, "\\u%04x", c));
            } else {
                mText.appendCodePoint(c);
            }
        });
        mText.append('"');
    }

    /**
     * Whether a character of untrusted text may confuse a terminal, a log or a page: control characters (C0,
     * C1), line separators, characters that change the text's direction, and unpaired surrogates.
     */
    public static boolean isUnsafe(int c) {
        return Character.isISOControl(c) || isDirection(c) || c == 0x2028 || c == 0x2029
                || c >= Character.MIN_SURROGATE && c <= Character.MAX_SURROGATE;
    }

    private static boolean isDirection(int c) {
        return c == 0x061c || c == 0x200e || c == 0x200f || c >= 0x202a && c <= 0x202e
                || c >= 0x2066 && c <= 0x2069;
    }
}
