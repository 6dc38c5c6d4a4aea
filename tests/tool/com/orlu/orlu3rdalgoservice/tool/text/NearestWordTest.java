package com.orlu.orlu3rdalgoservice.tool.text;

import static org.junit.Assert.assertEquals;

import org.junit.Test;

import java.util.List;

/** Tests the suggestion for a mistyped word. */
public final class NearestWordTest {
    private static final List<String> WORDS = List.of("inputs", "outputs", "frames", "fullAsync", "id",
            "android.sensor.timestamp", "android.sensor.exposureTime", "orlu.control.currentModeEx", "bits");

    @Test
    public void findsTheNearestWord() {
        String[][] rows = {
            // Letters omitted, inserted, changed, swapped; case is ignored.
            {"ouputs", "outputs"}, {"ouutputs", "outputs"}, {"oktputs", "outputs"}, {"otuputs", "outputs"},
            {"FRAMES", "frames"}, {"fullasync", "fullAsync"}, {"farmes", "frames"}, {"Ipnuts", "inputs"},
            // At most a third of the letters, rounded down, may be wrong; in words of two letters, none.
            {"frxxes", "frames"}, {"fxxxes", null}, {"ix", null}, {"ID", "id"}, {"bist", "bits"},
            {"btsi", null},
            // A prefix of at least three letters.
            {"ful", "fullAsync"}, {"fu", null}, {"outp", "outputs"},
            // A tag without its section, or with a wrong section.
            {"timestamp", "android.sensor.timestamp"}, {"timestmap", "android.sensor.timestamp"},
            {"android.lens.exposureTime", "android.sensor.exposureTime"},
            {"orlu.control.curentModeEx", "orlu.control.currentModeEx"},
            {"currentMode", "orlu.control.currentModeEx"},
            {"", null}, {"x".repeat(101), null}, {"something else", null},
        };
        for (String[] row : rows) {
            assertEquals(row[0], row[1], NearestWord.of(row[0], WORDS));
        }
        assertEquals("the first of two equally near", "bat", NearestWord.of("bxt", List.of("bat", "bit")));
        assertEquals(" (did you mean bits?)", NearestWord.question("bit", WORDS));
        assertEquals("", NearestWord.question("nothing", WORDS));
    }
}
