package com.orlu.orlu3rdalgoservice.tool.importer;

import static org.junit.Assert.assertEquals;

import org.junit.Test;

import java.util.List;

/** Tests which values of a truncated line are kept. */
public final class DumpParserTest {
    @Test
    public void dropsAValueThatMayHaveLostDigits() {
        String[][] rows = {
            {"int64", "[33333333 ]", "[33333333]"}, {"int64", "[33333333 44", "[33333333]"},
            {"int64", "[33333333", "[]"}, {"int64", "[", "[]"}, {"int64", "[33333333 ", "[33333333]"},
            {"int64", "[ ", "[]"},
            {"rational", "[(3 / 4) (5 / 6) ]", "[3/4, 5/6]"},
            {"rational", "[(3 / 4) (5 / 6)", "[3/4, 5/6]"},
            {"rational", "[(3 / 4) (5 / ", "[3/4]"}, {"rational", "[(3 / 4", "[]"},
        };
        for (String[] row : rows) {
            List<String> lines = List.of("  android.sensor.exposureTime (e0000): " + row[0] + "[1]",
                    "    " + row[1]);
            assertEquals(row[1], row[2],
                    new DumpParser(new Notes()).parse(lines).get(0).get(0).values().toString());
        }
    }
}
