package com.orlu.orlu3rdalgoservice.tool.tags;

import static org.junit.Assert.assertEquals;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.Arrays;
import java.util.HexFormat;
import java.util.stream.Collectors;
import java.util.stream.IntStream;

import org.junit.Test;

/** Tests the text for a parameter's bytes, including records with many fields and bytes of a wrong size. */
public final class ParameterFormatterTest {
    private static ByteBuffer bytes(int size) {
        return ByteBuffer.allocate(size).order(ByteOrder.LITTLE_ENDIAN);
    }

    /** Returns ints that equal their indexes. */
    private static ByteBuffer counting(int size) {
        ByteBuffer bytes = bytes(size);
        for (int i = 0; i < size / 4; ++i) {
            bytes.putInt(4 * i, i);
        }
        return bytes;
    }

    private static byte[] hex(String text) {
        return HexFormat.of().parseHex(text.replace(" ", ""));
    }

    @Test
    public void writesNumbers() {
        Object[][] rows = {
            {ParameterType.INT, "feffffff", "-2", "-2"},
            {ParameterType.INT, "feffff", "feffff", "\"feffff\""},
            {ParameterType.LONG, "ffffffffffffffff", "-1", "-1"},
            {ParameterType.UNSIGNED_LONG, "ffffffffffffffff", "18446744073709551615", "18446744073709551615"},
            {ParameterType.LONG, "01000000", "01000000", "\"01000000\""},
            {ParameterType.FLOAT, "00000040", "2", "2.0"},
            {ParameterType.FLOAT, "0000c07f", "NaN", "\"NaN\""},
            {ParameterType.BOOL, "00", "false", "false"},
            {ParameterType.BOOL, "02", "true", "true"},
            {ParameterType.BOOL, "0000", "0000", "\"0000\""},
            {ParameterType.INTS, "01000000 02000000", "[1, 2]", "[1,2]"},
            {ParameterType.INTS, "", "", "\"\""},
            {ParameterType.INTS, "0100000002", "0100000002", "\"0100000002\""},
            {ParameterType.LONGS, "0100000000000000 0000000001000000", "[1, 4294967296]", "[1,4294967296]"},
            {ParameterType.LONGS, "01000000 00000000 01000000", "010000000000000001000000",
                "\"010000000000000001000000\""},
            {ParameterType.FLOATS, "0000803f 0000003f", "[1, 0.5]", "[1.0,0.5]"},
            {ParameterType.DOUBLES, "000000000000f03f 000000000000e0bf", "[1, -0.5]", "[1.0,-0.5]"},
            {ParameterType.BITS, "01000000000000800f00000000000000", "[0x8000000000000001, 0xf]",
                "\"[0x8000000000000001, 0xf]\""},
            // In text, two equal values at the end are listed; three are abbreviated.
            {ParameterType.INTS, "07000000".repeat(2), "[7, 7]", "[7,7]"},
            {ParameterType.INTS, "05000000" + "07000000".repeat(3), "[5, 7 x 3]", "[5,7,7,7]"},
            {ParameterType.COUNT, "09000000 ffffffff", "9", "9"},
            {ParameterType.TEXT, "6162 00 63", "\"ab\"", "\"ab\""},
            {ParameterType.TEXT, "c3a4", "\"\u00e4\"", "\"\u00e4\""},
            // If the bytes, read as an int, would be a time of many days, they are a float. Exceptions: the
            // largest and the smallest int are ints.
            {ParameterType.MILLISECONDS, "10270000", "10000", "\"10000\""},
            {ParameterType.MILLISECONDS, "ffffffff", "-1", "\"-1\""},
            {ParameterType.MILLISECONDS, "ffffff7f", "2147483647", "\"2147483647\""},
            {ParameterType.MILLISECONDS, "00000080", "-2147483648", "\"-2147483648\""},
            {ParameterType.MILLISECONDS, "00002041", "10", "\"10\""},
            {ParameterType.MILLISECONDS, "000020c1", "-10", "\"-10\""},
            {ParameterType.BYTES, "0a0b", "0a0b", "\"0a0b\""},
            {ParameterType.UNKNOWN, "0000803f", "0000803f (as int 1065353216, as float 1)",
                "\"0000803f (as int 1065353216, as float 1)\""},
            {ParameterType.UNKNOWN, "000000000000f03f",
                "000000000000f03f (as long 4607182418800017408, as double 1)",
                "\"000000000000f03f (as long 4607182418800017408, as double 1)\""},
            {ParameterType.BYTES, "0b".repeat(17), "0b".repeat(16) + "... (17 bytes)",
                "\"" + "0b".repeat(16) + "... (17 bytes)\""},
        };
        for (Object[] row : rows) {
            ParameterType type = (ParameterType) row[0];
            byte[] bytes = hex((String) row[1]);
            assertEquals(type + " " + row[1], row[2], ParameterFormatter.format(type, bytes));
            assertEquals(type + " " + row[1], row[3], JsonWriter.line(ParameterFormatter.json(type, bytes)));
        }
    }

    @Test
    public void shortensLists() {
        String numbers = IntStream.range(0, 24).mapToObj(Integer::toString).collect(Collectors.joining(", "));
        assertEquals("[" + numbers + "]",
                ParameterFormatter.format(ParameterType.INTS, counting(96).array()));
        assertEquals("[" + numbers + ", ... 25 in all]",
                ParameterFormatter.format(ParameterType.INTS, counting(100).array()));
        assertEquals(25, ((int[]) ParameterFormatter.json(ParameterType.INTS, counting(100).array())).length);
    }

    @Test
    public void writesRecords() {
        ByteBuffer sensor = counting(20);
        sensor.put(16, (byte) 1);
        ByteBuffer faces = counting(204);
        faces.putInt(0, 2);
        ByteBuffer tooMany = bytes(204);
        tooMany.putInt(0, 1000);
        ByteBuffer refocus = counting(120);
        refocus.putInt(100, 180);
        ByteBuffer outline = counting(10736);
        outline.putFloat(9608, 1.5f).putFloat(9612, -2).putFloat(9616, 30);
        Object[][] rows = {
            {ParameterType.RECT, counting(16), "(0, 1)-(2, 3)"},
            {ParameterType.CROP, counting(16), "left 0 top 1 width 2 height 3"},
            {ParameterType.SENSOR_CROP, sensor, "left 0 right 1 top 2 bottom 3 flag 1"},
            {ParameterType.FACES, faces, "2 faces: (1, 2)-(3, 4) turned 41, (5, 6)-(7, 8) turned 42"},
            {ParameterType.FACES, tooMany, "1000 faces: " + "(0, 0)-(0, 0) turned 0, ".repeat(9)
                + "(0, 0)-(0, 0) turned 0"},
            {ParameterType.FACE_OUTLINE, outline,
                "0 faces, first point (1, 2), pose (1.5, -2, 30), rect (2634, 2635)-(2636, 2637)"},
            {ParameterType.REFOCUS_PACK, refocus, "point 23, 24 f-number 1.8 film size 29"},
            {ParameterType.PHASE_DETECTION, counting(2068),
                "header [0, 1, 2, 3], 4 pairs, first (5, 6)"},
        };
        for (Object[] row : rows) {
            byte[] bytes = ((ByteBuffer) row[1]).array();
            ParameterType type = (ParameterType) row[0];
            assertEquals(row[2], ParameterFormatter.format(type, bytes));
            byte[] longer = Arrays.copyOf(bytes, bytes.length + 4);
            assertEquals(type + ", longer", longer.length > 16 ? HexFormat.of().formatHex(longer, 0, 16)
                    + "... (" + longer.length + " bytes)" : "", ParameterFormatter.format(type, longer));
        }
    }

    @Test
    public void writesExif() {
        ByteBuffer bytes = counting(152);
        bytes.putLong(0, 10_000_000_000L).putFloat(16, 1.8f).putFloat(24, 2).putFloat(28, 26.5f)
                .putFloat(36, 5.4f).putFloat(68, 0.25f).putLong(80, 77).putDouble(88, 47.5)
                .putDouble(96, -122.25).putDouble(104, 30).putLong(112, 1_700_000_000_000L);
        String begin = "exposure 10000000000 ns, ISO %s, aperture 1.8, sensitivity 5, zoom 2, "
                + "focal length 5.4 mm, 35 mm equivalent %s, flash mode 10, flash state %s, AWB mode 12, "
                + "scene mode 13, AE mode 14, AE compensation 15 steps of 34/35, filter 16 intensity 0.25 "
                + "mask 18, timestamp 77, location %s";
        // Offset of the flag to clear (-1: clear none), and the texts of the fields that depend on flags.
        Object[][] rows = {
            {-1, "2", "26.5", "33", "47.5, -122.25, altitude 30, time 1700000000000"},
            {12, "none", "26.5", "33", "47.5, -122.25, altitude 30, time 1700000000000"},
            {32, "2", "none", "33", "47.5, -122.25, altitude 30, time 1700000000000"},
            {44, "2", "26.5", "none", "47.5, -122.25, altitude 30, time 1700000000000"},
            {120, "2", "26.5", "33", "47.5, -122.25, altitude none, time 1700000000000"},
            {128, "2", "26.5", "33", "none"},
        };
        for (Object[] row : rows) {
            ByteBuffer with = ByteBuffer.wrap(bytes.array().clone()).order(ByteOrder.LITTLE_ENDIAN);
            if ((int) row[0] >= 0) {
                with.putInt((int) row[0], 0);
            }
            assertEquals("without " + row[0], begin.formatted(row[1], row[2], row[3], row[4]),
                    ParameterFormatter.format(ParameterType.EXIF, with.array()));
        }
    }
}
