package com.orlu.orlu3rdalgoservice.tool.importer;

import static org.junit.Assert.assertEquals;

import org.junit.Test;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;

import java.nio.file.Path;
import java.util.List;

/** Imports entries of metadata dumps, and tests the tag values and the notes about dropped input. */
public final class DumpReaderTest {
    @Test
    public void importsAnEntryOrNotesWhyNot() {
        String sizes = "android.scaler.cropRegion (d0000): int32[4]";
        String gain = "android.sensor.sensitivity (e0002): int32[1]";
        String bytes = "orlu.feedback.sensor_pdaf_info (1): byte[2]";
        String[][] rows = {
            {bytes, "[255 0 ]", "\"ff00\"", ""},
            {bytes, "[-1 -128 ]", "\"ff80\"", ""},
            {bytes, "[256 0 ]", null, "a:1: note: T dropped; not a byte: 256"},
            {bytes, "[-129 0 ]", null, "a:1: note: T dropped; not a byte: -129"},
            {"orlu.control.localtime (1): byte[2]", "[305 0 ]", null,
                "a:1: note: T dropped; not a byte: 305"},
            {"android.control.aeMode (1): byte[1]", "[300 ]", null, "a:1: note: T dropped; not a byte: 300"},
            {sizes, "[1 2 3 4 ]", "[1,2,4,6]", ""},
            {sizes, "[2147483647 0 1 1 ]", null,
                "a:1: note: T dropped; not an int32: an edge of 2147483648"},
            {sizes.replace("4]", "8]"), "[1 2 3 4 5 6 7 8 ]", null,
                "a:1: note: T dropped; wrong type: int32[8] instead of one rectangle"},
            {gain, "[100 ]\n" + gain + "\n[100 ]\n" + gain + "\n[200 ]", "200",
                "a:5: note: T given twice; 100 dropped"},
            {gain, "[100 ]\nandroid.lens.aperture (8): float[99999999999]\n[1.0 ]", "100",
                "a:3: note: dropped; not an entry: android.lens.aperture (8): float[99999999999]"},
            {gain, "[100 ]\n== Events\n[1] opened", "100", ""},
        };
        for (String[] row : rows) {
            Notes notes = new Notes();
            notes.begin(Path.of("a"));
            String tag = row[0].split(" ")[0];
            List<String> lines = (row[0] + "\n" + row[1]).lines().toList();
            List<ImportedFrame> frames = new DumpReader(notes).frames(lines);
            assertEquals(row[1], String.valueOf(row[2]), JsonWriter.line(frames.get(0).tags().get(tag)));
            assertEquals(row[1], row[3], String.join("\n", notes.lines()).replace(tag, "T"));
        }
    }
}
