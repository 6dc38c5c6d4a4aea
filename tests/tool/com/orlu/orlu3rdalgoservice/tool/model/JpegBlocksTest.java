package com.orlu.orlu3rdalgoservice.tool.model;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertSame;

import org.junit.Test;

import java.util.HexFormat;

/**
 * Tests the blanking of JPEG blocks. Each of CASES has a name, a file in hexadecimal, and the blanked file.
 * In CASES, blanking sets each byte 41 to 0, except in the block name "Adobe" (41646f6265).
 */
public final class JpegBlocksTest {
    private static final String JFIF = "4a46494600 0101 00 0001 0001";
    private static final String TABLE = "ffdb 0004 0102";
    private static final String SCAN = "ffda 0004 0305 11ff00ffd7 22";
    private static final String[][] CASES = {
        {"EXIF", "ffd8 ffe1 0004 4141" + SCAN + "ffd9", "ffd8 ffe1 0004 0000" + SCAN + "ffd9"},
        {"a comment", "ffd8" + TABLE + "fffe 0003 41" + SCAN + "ffd9",
            "ffd8" + TABLE + "fffe 0003 00" + SCAN + "ffd9"},
        {"a comment between two scans", "ffd8" + SCAN + "fffe 0003 41" + SCAN + "ffd9",
            "ffd8" + SCAN + "fffe 0003 00" + SCAN + "ffd9"},
        {"further bytes", "ffd8" + SCAN + "ffd9 ffd8 41", "ffd8" + SCAN + "ffd9 0000 00"},
        {"bytes between blocks", "ffd8" + TABLE + "4141" + SCAN + "ffd9",
            "ffd8" + TABLE + "0000" + SCAN + "ffd9"},
        {"a repeated first byte", "ffd8 ffffe1 0003 41" + SCAN + "ffd9",
            "ffd8 ffffe1 0003 00" + SCAN + "ffd9"},
        {"a thumbnail", "ffd8 ffe0 0013" + JFIF + "0101 414141" + SCAN + "ffd9",
            "ffd8 ffe0 0013" + JFIF + "0000 000000" + SCAN + "ffd9"},
        {"a JFXX block", "ffd8 ffe0 0008 4a4658580041" + SCAN + "ffd9",
            "ffd8 ffe0 0008 000000000000" + SCAN + "ffd9"},
        {"bytes after a colour transform", "ffd8 ffee 0010 41646f6265 0064 0000 0000 00 4141" + SCAN + "ffd9",
            "ffd8 ffee 0010 41646f6265 0064 0000 0000 00 0000" + SCAN + "ffd9"},
        {"a truncated block", "ffd8 ffe1 0040 4141", "ffd8 ffe1 0040 0000"},
        {"a block without length", "ffd8 ffe1 00", "ffd8 ffe1 00"},
        {"a block of length 0", "ffd8 ffe1 0000 41ffd9 41", "ffd8 ffe1 0000 00ffd9 00"},
    };
    private static final String[] PLAIN = {
        "ffd8" + TABLE + SCAN + "ffd9", "ffd8 ffe0 0010" + JFIF + "0000" + SCAN + "ffd9",
        "ffd8 ffe2 000f 4943435f50524f46494c45 0041" + SCAN + "ffd9", "ffd8 41", "414141", "ffd8", ""};

    private static byte[] bytes(String hexadecimal) {
        return HexFormat.of().parseHex(hexadecimal.replace(" ", ""));
    }

    @Test
    public void blanksWhatThePictureDoesNotNeed() {
        for (String[] row : CASES) {
            String found = HexFormat.of().formatHex(JpegBlocks.blank(bytes(row[1])));
            assertEquals(row[0], row[2].replace(" ", ""), found);
        }
    }

    @Test
    public void returnsOtherBytesUnchanged() {
        for (String plain : PLAIN) {
            byte[] bytes = bytes(plain);
            assertSame(plain, bytes, JpegBlocks.blank(bytes));
        }
    }
}
