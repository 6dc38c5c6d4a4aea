package com.orlu.orlu3rdalgoservice.tool.compare;

import static org.junit.Assert.assertEquals;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.ByteArrayOutputStream;
import java.io.PrintStream;

import org.junit.Test;

/** Tests the comparison of two runs' values, and the printed differences. */
public final class ValuesTest {
    private static Json json(String text) throws MistakeException {
        return text == null ? null : Json.parse("f", 1, text);
    }

    @Test
    public void comparesWithinTheTolerance() throws MistakeException {
        Object[][] rows = {
            {0.0, "1", "1", true}, {0.0, "1", "1.0000001", false}, {0.5, "1", "1.5", true},
            {0.5, "1.5", "1", true}, {0.5, "1", "1.51", false}, {0.5, "-1", "1", false},
            {1.0, "[1, 2]", "[2, 1]", true}, {1.0, "[1, 2]", "[1, 3.5]", false},
            {1.0, "[1, 2]", "[1]", false}, {1.0, "[1]", "1", false},
            {0.0, "[]", "\"\"", false}, {0.0, "\"\"", "[]", false}, {1.0, "[]", "{}", false},
            {1.0, "{\"a\": [1], \"b\": 2}", "{\"b\": 3, \"a\": [0]}", true},
            {1.0, "{\"a\": 1}", "{\"b\": 1}", false}, {1.0, "{\"a\": 1}", "{\"a\": 1, \"b\": 2}", false},
            {9.0, "\"1\"", "\"2\"", false}, {9.0, "\"1\"", "1", false}, {9.0, "true", "false", false},
            {9.0, null, null, true}, {9.0, null, "0", false}, {9.0, "0", null, false},
        };
        for (Object[] row : rows) {
            assertEquals(row[1] + " and " + row[2] + " within " + row[0], row[3],
                    new Closeness((double) row[0]).isClose(json((String) row[1]), json((String) row[2])));
        }
    }

    @Test
    public void namesWhatDiffers() throws MistakeException {
        String begin = "exposure 10000000 ns, ISO 100, location (1, 2), in 35 mm none, flash mode 0, ";
        String many = "aaaa 1, bbbb 1, cccc 1, dddd 1, eeee 1, ffff 1, gggg 1";
        String number = "123456789012345678901234567890123456";
        String[][] rows = {
            {"1", "2", "1", "2", "1 / 2"},
            {"a".repeat(35), "b".repeat(35), "0", "1", "a".repeat(35) + " / " + "b".repeat(35)},
            {"a".repeat(36), "b".repeat(35), "0", "1", "a".repeat(35) + "... / " + "b".repeat(35)},
            {begin + "x", begin.replace("100,", "200,") + "x", "\"\"", "\"\"", "ISO 100 / ISO 200"},
            // A comma within brackets does not separate fields.
            {begin + "x", begin.replace("(1, 2)", "(1, 3)") + "x", "\"\"", "\"\"",
                "location (1, 2) / location (1, 3)"},
            {many, many.replace("1", "2"), "\"\"", "\"\"",
                "aaaa 1 / aaaa 2; bbbb 1 / bbbb 2; cccc 1 / cccc 2; 4 more"},
            {"[" + number + ", 2]", "[" + number + ", 3]", "[1, 2]", "[1, 3]", "[1] 2 / 3"},
        };
        for (String[] row : rows) {
            assertEquals(row[4], ValueDifference.of(row[0], row[1], json(row[2]), json(row[3])));
        }
    }

    @Test
    public void wrapsLines() {
        String word = "x".repeat(54);
        // A line of 110 columns is not wrapped. A word that ends after column 110 moves to the next line; a
        // word that is longer than a line is not cut.
        String[][] rows = {
            {word + " " + word, "  " + word + "\n      " + word + "\n"},
            {word + " " + "y".repeat(53), "  " + word + " " + "y".repeat(53) + "\n"},
            {"a " + "y".repeat(200) + " b", "  a\n      " + "y".repeat(200) + "\n      b\n"},
        };
        for (String[] row : rows) {
            ByteArrayOutputStream bytes = new ByteArrayOutputStream();
            new TextLayout(new PrintStream(bytes), TextLayout.REPORT).print(2, row[0]);
            assertEquals(row[1], bytes.toString());
        }
        ByteArrayOutputStream bytes = new ByteArrayOutputStream();
        new TextLayout(new PrintStream(bytes), TextLayout.REPORT).print(2, 8, "label", word + " " + word);
        assertEquals("  label   " + word + "\n" + " ".repeat(10) + word + "\n", bytes.toString());
    }
}
