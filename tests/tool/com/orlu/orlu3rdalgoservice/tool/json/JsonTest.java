package com.orlu.orlu3rdalgoservice.tool.json;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNull;
import static org.junit.Assert.assertTrue;

import org.junit.Test;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.EOFException;
import java.io.IOException;
import java.math.BigDecimal;
import java.util.Arrays;
import java.util.List;

/** Tests values at their bounds, the positions in messages, and the writer. */
public final class JsonTest {
    private static final String TEXT = """
            {"list": [1, 2.0, "x", null, {"deep": [true]}], "odd name": {"a\\u0007": 1e400},
             "long": 9223372036854775807, "more": 9223372036854775808, "small": 1e-400}
            """;

    private interface Use {
        Object of(Json root) throws MistakeException;
    }

    private static String of(Use use) {
        try {
            return String.valueOf(use.of(Json.parse("f", 5, TEXT.replace("1e400", "1e39"))));
        } catch (MistakeException e) {
            return e.getMessage();
        }
    }

    @Test
    public void checksEachAccess() {
        assertEquals("1", of(root -> root.get("list").list().get(0).integer(1, 1)));
        assertEquals("f:5:11: list[0]: expected a whole number from 2 to 3, found 1",
                of(root -> root.get("list").list().get(0).integer(2, 3)));
        assertEquals("2", of(root -> root.get("list").list().get(1).integer(0, 9)));
        assertEquals("false", of(root -> root.get("list").list().get(1).isWholeNumber()));
        assertEquals("f:5:19: list[2]: expected a number, found \"x\"",
                of(root -> root.get("list").list().get(2).number()));
        assertEquals("f:5:24: list[3]: expected text, found null",
                of(root -> root.get("list").list().get(3).string()));
        assertEquals("f:5:40: list[4].deep[0]: expected an object, found true",
                of(root -> root.get("list").list().get(4).get("deep").list().get(0).members()));
        assertEquals("f:5:10: list: expected a list of 2 elements, found 5",
                of(root -> root.get("list").list(2)));
        assertEquals("f:5:1: missing field none", of(root -> root.require("none")));
        assertEquals("f:5:10: list: expected an object, found a list",
                of(root -> root.get("list").require("none")));
        assertEquals("f:5:73: \"odd name\".\"a\\u0007\": expected a number in the range of a float (up to "
                + "3.4028235E38), found 1E39", of(root -> root.get("odd name").get("a\u0007").single()));
        assertEquals("" + Long.MAX_VALUE, of(root -> root.get("long").integer(0, Long.MAX_VALUE)));
        assertEquals("f:6:39: more: expected a whole number from 0 to 9223372036854775807, found "
                + "9223372036854775808", of(root -> root.get("more").integer(0, Long.MAX_VALUE)));
        assertEquals("0.0", of(root -> root.get("small").real()));
        assertEquals("null", of(root -> root.at("odd name").at("none").get("below")));
        assertEquals("7", of(root -> root.integer("none", 0, 9, 7)));
        assertEquals("7 1", of(root -> root.integer("list", 0, 9, 7) + " " + root.mistakes().errors()));
        assertEquals("[] {}", of(root -> root.get("long").elements() + " " + root.get("long").entries()));
        assertEquals("x", of(root -> root.get("list").list().get(2).text()));
        assertEquals("[1,2.0,\"x\",null,{\"deep\":[true]}]", of(root -> root.get("list").text()));
    }

    @Test
    public void limitsTheCostOfForeignText() {
        assertEquals("f:1:66: expected at most 64 levels of nesting, found more",
                problem("[".repeat(65) + "1" + "]".repeat(65)));
        assertNull(problem("[".repeat(64) + "]".repeat(64)));
        assertEquals("f:1:2: expected a number in the range of a double, found 1e999999999",
                problem("[1e999999999]"));
        assertEquals("f:1:2: expected a number in the range of a double, found " + "1".repeat(60) + "...",
                problem("[" + "1".repeat(401) + "]"));
        assertNull(problem("[\"" + "x".repeat(1 << 20) + "\"]"));
        String number = problem("[" + "1".repeat(1 << 20) + "]");
        assertTrue(number, number.startsWith("f:1:1: not JSON: "));
        // Names with the same hash must not cause a failure.
        StringBuilder names = new StringBuilder("{");
        for (int i = 0; i < 1 << 14; ++i) {
            names.append('"');
            for (int bit = 0; bit < 14; ++bit) {
                names.append((i >> bit & 1) == 0 ? "Aa" : "BB");
            }
            names.append("\": 1,");
        }
        assertNull(problem(names + "\"\": 1}"));
    }

    private static String problem(String text) {
        try {
            Json.parse("f", 1, text);
            return null;
        } catch (MistakeException e) {
            return e.getMessage();
        }
    }

    @Test
    public void writes() {
        assertEquals("{\"a\":[1,-2],\"b\":\"NaN\",\"c\":1.0E7,\"d\":null,"
                + "\"e\":\"\\\"\\n\\u001b\\u009b\\u202e\"}",
                JsonWriter.line(JsonWriter.object("a", new int[] {1, -2}, "b", Double.NaN, "c",
                        new BigDecimal("1.0E7"), "d", null, "e", "\"\n\u001b\u009b\u202e")));
        assertEquals("{\n  \"a\": [\n    true,\n    {}\n  ],\n  \"b\": []\n}\n",
                JsonWriter.pretty(JsonWriter.object(
                        "a", Arrays.asList(true, JsonWriter.object()), "b", List.of())));
    }

    @Test
    public void escapesForeignText() {
        assertEquals("a\\u000ab\\u001b[2J\\u007f\\u009b\\u2028\\u202e\\u2066\\ud800\u00e9\ud83d\ude00",
                Printable.line("a\nb\u001b[2J\u007f\u009b\u2028\u202e\u2066\ud800\u00e9\ud83d\ude00"));
        assertEquals("a\n\tb\\u000d", Printable.lines("a\n\tb\r"));
        assertEquals("the file ends too early", Printable.message(new EOFException()));
        assertEquals("IOException", Printable.message(new IOException()));
    }
}
