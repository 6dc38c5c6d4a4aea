package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.math.BigDecimal;
import java.math.MathContext;
import java.util.List;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.IntStream;

/** A tag and its values in a sweep. Each value has the form that the option --tag of ./run accepts. */
record SweptTag(String name, List<String> values) {
    private static final int MOST = 1000;
    private static final int LEAST_DIGITS = 7;
    private static final String NUMBER = "([-+]?[0-9.]+(?:[eE][-+]?[0-9]+)?)";
    private static final Pattern RANGE = Pattern.compile(NUMBER + ":" + NUMBER + ":([0-9]{1,9})");

    /** Parses NAME=from:to:count or NAME=value,value,...; throws an IllegalArgumentException otherwise. */
    static SweptTag of(String text) {
        int equals = text.indexOf('=');
        if (equals < 1 || equals == text.length() - 1) {
            throw new IllegalArgumentException("--tag: expected NAME=from:to:count or NAME=value,value; "
                    + "found \"" + text + '"');
        }
        String values = text.substring(equals + 1);
        Matcher range = RANGE.matcher(values);
        return new SweptTag(text.substring(0, equals), range.matches() ? range(text, range) : list(values));
    }

    /** Returns the part after the last dot: "orientation" for android.jpeg.orientation. */
    String shortName() {
        return name.substring(name.lastIndexOf('.') + 1);
    }

    /** Returns NAME=VALUE for each value. */
    List<String> assignments() {
        return values.stream().map(value -> name + "=" + value).toList();
    }

    private static List<String> range(String text, Matcher range) {
        int steps = Integer.parseInt(range.group(3));
        if (steps < 2 || steps > MOST) {
            throw new IllegalArgumentException(
                    "--tag " + text + ": expected 2 to " + MOST + " values, found " + steps);
        }
        try {
            BigDecimal from = new BigDecimal(range.group(1));
            BigDecimal length = new BigDecimal(range.group(2)).subtract(from);
            // Enough digits to keep whole numbers exact.
            MathContext digits =
                    new MathContext(Math.max(LEAST_DIGITS, length.precision() - length.scale()));
            BigDecimal last = BigDecimal.valueOf(steps - 1L);
            return IntStream.range(0, steps).mapToObj(step ->
                    from.add(length.multiply(BigDecimal.valueOf(step)).divide(last, digits))
                            .stripTrailingZeros().toPlainString()).toList();
        } catch (NumberFormatException e) {
            throw new IllegalArgumentException(
                    "--tag " + text + ": expected numbers around the first \":\"", e);
        }
    }

    // Parses the values as elements of a JSON list. If that fails, splits them at commas as unquoted texts.
    private static List<String> list(String values) {
        try {
            return Json.parse("--tag", 0, "[" + values + "]").list().stream().map(JsonWriter::line).toList();
        } catch (MistakeException e) {
            return List.of(values.split(","));
        }
    }
}
