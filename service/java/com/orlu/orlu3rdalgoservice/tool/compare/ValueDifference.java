package com.orlu.orlu3rdalgoservice.tool.compare;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.HexFormat;
import java.util.List;

/**
 * Describes how two values differ: shows both values if they are short, else the differing fields or
 * elements, or the first differing byte.
 */
final class ValueDifference {
    private static final int LONGEST = 70;
    private static final int SHOWN = 3;
    // Matches the comma between two fields of a record, but no comma within brackets.
    private static final String BETWEEN_FIELDS = ", (?![^(\\[]*[)\\]])";

    private ValueDifference() {
    }

    /** Returns the differences of two parameters with different bytes, each as "ONE / OTHER". */
    static String of(Parameter one, Parameter other) {
        String text = of(one.text(), other.text(), one.json(), other.json());
        return text.isEmpty() ? bytes(one.bytes(), other.bytes()) : text;
    }

    /** Returns the differences of two values, given as text and JSON; "" if it finds none. */
    static String of(String one, String other, Json oneValue, Json otherValue) {
        if (!one.equals(other) && one.length() + other.length() <= LONGEST) {
            return one + " / " + other;
        }
        List<String> found = oneValue != null && otherValue != null && oneValue.isList() && otherValue
                .isList()
                        && oneValue.elements().size() == otherValue.elements().size()
                ? elements(oneValue.elements(), otherValue.elements())
                : fields(one.split(BETWEEN_FIELDS), other.split(BETWEEN_FIELDS));
        if (found.isEmpty()) {
            return one.equals(other) ? "" : cut(one) + " / " + cut(other);
        }
        String more = found.size() > SHOWN ? "; " + (found.size() - SHOWN) + " more" : "";
        return String.join("; ", found.subList(0, Math.min(SHOWN, found.size()))) + more;
    }

    private static List<String> elements(List<Json> one, List<Json> other) {
        List<String> found = new ArrayList<>();
        for (int i = 0; i < one.size(); ++i) {
            String left = JsonWriter.line(one.get(i));
            String right = JsonWriter.line(other.get(i));
            if (!left.equals(right)) {
                found.add("[" + i + "] " + cut(left) + " / " + cut(right));
            }
        }
        return found;
    }

    private static List<String> fields(String[] one, String[] other) {
        List<String> found = new ArrayList<>();
        for (int i = 0; one.length > 1 && one.length == other.length && i < one.length; ++i) {
            if (!one[i].equals(other[i])) {
                found.add(cut(one[i]) + " / " + cut(other[i]));
            }
        }
        return found;
    }

    private static String bytes(byte[] one, byte[] other) {
        if (one.length != other.length) {
            return one.length + " bytes / " + other.length + " bytes";
        }
        int at = Arrays.mismatch(one, other);
        return "byte " + at + " of " + one.length + ": " + hex(one[at]) + " / " + hex(other[at]);
    }

    private static String hex(byte value) {
        return HexFormat.of().toHexDigits(value);
    }

    /** Returns the text, shortened if it is too long for half a line. */
    static String cut(String text) {
        return text.length() <= LONGEST / 2 ? text : text.substring(0, LONGEST / 2) + "...";
    }
}
