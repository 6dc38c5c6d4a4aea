package com.orlu.orlu3rdalgoservice.record;

import android.graphics.Rect;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.util.Rational;

import java.lang.reflect.Array;
import java.util.ArrayDeque;
import java.util.Collections;
import java.util.Deque;
import java.util.Map;

/**
 * Writes a JSON object. A metadata value becomes an object named after its type, as in a request file
 * ({"long": 5}), so that it can be read back. A value of any other class becomes {"class": its name, "text":
 * what toString() returns}.
 */
final class JsonText {
    private static final int IMAGE_LEVEL = 3;
    private static final char[] HEX = "0123456789abcdef".toCharArray();
    // The names that request files use.
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

    private final StringBuilder mText = new StringBuilder("{");
    private final Deque<Character> mOpen = new ArrayDeque<>(Collections.singleton('}'));

    /** Begins a member that is an object. */
    JsonText object(String name) {
        name(name);
        return open('{', '}');
    }

    /** Begins a member that is a list. */
    JsonText list(String name) {
        name(name);
        return open('[', ']');
    }

    /** Begins an element of a list, an object. */
    JsonText element() {
        separate();
        return open('{', '}');
    }

    private JsonText open(char first, char last) {
        mText.append(first);
        mOpen.push(last);
        return this;
    }

    /** Closes the innermost object, list or element. */
    JsonText end() {
        mText.append(mOpen.pop());
        return this;
    }

    JsonText add(String name, String value) {
        name(name);
        quote(value);
        return this;
    }

    JsonText add(String name, boolean value) {
        name(name);
        mText.append(value);
        return this;
    }

    JsonText add(String name, long value) {
        name(name);
        mText.append(value);
        return this;
    }

    JsonText add(String name, int[] values) {
        name(name);
        if (values == null) {
            mText.append("null");
        } else {
            array(values);
        }
        return this;
    }

    /** Adds an object of typed values. A value whose reading throws is replaced by the exception. */
    JsonText addValues(String name, Map<String, ?> values) {
        object(name);
        return addAll(values).end();
    }

    /** Adds typed values to the innermost object. */
    JsonText addAll(Map<String, ?> values) {
        for (Map.Entry<String, ?> entry : values.entrySet()) {
            name(entry.getKey());
            int start = mText.length();
            try {
                typed(entry.getValue());
            } catch (RuntimeException e) {
                mText.setLength(start);
                other(entry.getValue().getClass().getName(), "can't be read: " + e.getClass().getName());
            }
        }
        return this;
    }

    /** Returns the text; everything still open is closed in it. */
    @Override
    public String toString() {
        StringBuilder whole = new StringBuilder(mText);
        mOpen.forEach(whole::append);
        return whole.append('\n').toString();
    }

    private void separate() {
        char last = mText.charAt(mText.length() - 1);
        if (last != '{' && last != '[') {
            // Each image and each tag has its own line.
            mText.append(mOpen.size() == IMAGE_LEVEL ? "," : ",\n");
        }
    }

    private void name(String name) {
        separate();
        quote(name);
        mText.append(':');
    }

    private void quote(String text) {
        mText.append('"');
        for (int i = 0; i < text.length(); ++i) {
            char c = text.charAt(i);
            if (c == '"' || c == '\\') {
                mText.append('\\').append(c);
            } else if (c < ' ' || Character.isSurrogate(c)) {
                // An unpaired surrogate has no UTF-8 form. Escaped, it is read back unchanged.
                mText.append("\\u").append(HEX[c >> 12]).append(HEX[c >> 8 & 15]).append(HEX[c >> 4 & 15])
                        .append(HEX[c & 15]);
            } else {
                mText.append(c);
            }
        }
        mText.append('"');
    }

    private void typed(Object value) {
        if (value == null) {
            mText.append("null");
            return;
        }
        String type = TYPE_NAMES.get(value.getClass());
        if (type == null) {
            other(value.getClass().getName(), String.valueOf(value));
            return;
        }
        mText.append('{');
        quote(type);
        mText.append(':');
        plain(value);
        mText.append('}');
    }

    private void other(String className, String text) {
        mText.append("{\"class\":");
        quote(className);
        mText.append(",\"text\":");
        quote(String.valueOf(text));
        mText.append('}');
    }

    private void plain(Object value) {
        if (value instanceof byte[]) {
            bytes((byte[]) value);
        } else if (value.getClass().isArray()) {
            array(value);
        } else if (value instanceof Float || value instanceof Double) {
            double number = ((Number) value).doubleValue();
            // JSON lacks these numbers.
            if (Double.isNaN(number) || Double.isInfinite(number)) {
                quote(value.toString());
            } else {
                mText.append(value);
            }
        } else if (value instanceof Number || value instanceof Boolean) {
            mText.append(value);
        } else if (value instanceof String) {
            quote((String) value);
        } else {
            object(value);
        }
    }

    private void bytes(byte[] bytes) {
        mText.append('"');
        for (byte b : bytes) {
            mText.append(HEX[b >> 4 & 15]).append(HEX[b & 15]);
        }
        mText.append('"');
    }

    private void array(Object array) {
        mText.append('[');
        for (int i = 0; i < Array.getLength(array); ++i) {
            if (i > 0) {
                mText.append(',');
            }
            plain(Array.get(array, i));
        }
        mText.append(']');
    }

    private void object(Object value) {
        if (value instanceof Rect) {
            Rect rect = (Rect) value;
            array(new int[] {rect.left, rect.top, rect.right, rect.bottom});
        } else if (value instanceof Face) {
            sides(((Face) value).getBounds(), "score", ((Face) value).getScore());
        } else if (value instanceof MeteringRectangle) {
            MeteringRectangle region = (MeteringRectangle) value;
            sides(region.getRect(), "weight", region.getMeteringWeight());
        } else if (value instanceof Location) {
            location((Location) value);
        } else {
            Rational rational = (Rational) value;
            array(new int[] {rational.getNumerator(), rational.getDenominator()});
        }
    }

    private void sides(Rect rect, String name, int number) {
        mText.append('{');
        add("left", rect.left).add("top", rect.top).add("right", rect.right).add("bottom", rect.bottom);
        add(name, number);
        mText.append('}');
    }

    private void location(Location location) {
        mText.append('{');
        add("provider", location.getProvider());
        number("latitude", location.getLatitude());
        number("longitude", location.getLongitude());
        if (location.hasAltitude()) {
            number("altitude", location.getAltitude());
        }
        add("time", location.getTime());
        mText.append('}');
    }

    private void number(String name, double value) {
        name(name);
        plain(value);
    }
}
