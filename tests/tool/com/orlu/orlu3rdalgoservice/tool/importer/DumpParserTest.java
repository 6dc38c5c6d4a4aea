package com.orlu.orlu3rdalgoservice.tool.importer;

import static org.junit.Assert.assertEquals;

import org.junit.Test;

import java.util.List;

/** Tests which values of a truncated line are kept. */
public final class DumpParserTest {
    @Test
    public void dropsAValueThatMayHaveLostDigits() {
        String[][] rows = {
            {"[33333333 ]", "[33333333]"}, {"[33333333 44", "[33333333]"}, {"[33333333", "[]"}, {"[", "[]"},
        };
        for (String[] row : rows) {
            assertEquals(row[0], row[1], new DumpParser(new Notes()).parse(List.of(
                    "  android.sensor.exposureTime (e0000): int64[1]", "    " + row[0])).get(0).get(0).values()
                    .toString());
        }
    }
}
