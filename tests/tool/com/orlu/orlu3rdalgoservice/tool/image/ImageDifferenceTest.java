package com.orlu.orlu3rdalgoservice.tool.image;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNotNull;
import static org.junit.Assert.assertNull;

import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import org.junit.Test;

import java.util.Arrays;

/** Tests the differences reported for two images with different bytes. */
public final class ImageDifferenceTest {
    /** PSNR is capped at this value, dB. */
    private static final double MOST = 100;
    // Format, width, height, stride, size, offset of the changed byte, its change; then the first row that
    // differs, the largest difference, and the PSNR.
    private static final Object[][] ROWS = {
        {"NV21", 4, 4, 4, 24, 9, 3, 2, 3, 50.6},
        {"NV21", 4, 4, 4, 24, 15, 100, 3, 100, 20.2},
        {"NV21", 4, 4, 6, 36, 4, 9, -1, 0, MOST},
        // A chroma sample covers two rows. It changes luma, and so the PSNR, only by rounding.
        {"NV21", 4, 4, 4, 24, 20, 10, 2, 15, MOST},
        {"YV12", 4, 4, 4, 24, 22, 10, 2, 18, MOST},
        {"R8G8B8A8", 2, 2, 8, 16, 13, 51, 1, 51, 24.6},
        {"R8G8B8A8", 2, 2, 8, 16, 7, 51, -1, 0, MOST},
        // The bit depth is the number of bits of the largest sample, but at least eight.
        {"RAW16", 2, 2, 4, 8, 7, 1, 1, 128, 12.0},
        {"RAW16", 2, 2, 4, 8, 0, 17, 0, 17, 29.5},
        {"MIPI_RAW10", 4, 2, 5, 10, 9, 3, 1, 3, 47.7},
    };

    @Test
    public void findsTheFirstRow() {
        for (Object[] row : ROWS) {
            byte[] one = new byte[(int) row[4]];
            Arrays.fill(one, (byte) (PixelFormat.named((String) row[0]).isYuv() ? 100 : 0));
            byte[] other = one.clone();
            other[(int) row[5]] += (byte) (int) row[6];
            ImageDifference difference = ImageDifference.of(
                    (String) row[0], (int) row[1], (int) row[2], (int) row[3], one, other);
            String name = row[0] + ", byte " + row[5];
            assertEquals(name + ", first row", row[7], difference.firstRow());
            assertEquals(name + ", largest difference", row[8], difference.most());
            assertEquals(name + ", PSNR", (double) row[9], Math.min(MOST, difference.psnr()), 0.1);
        }
    }

    @Test
    public void showsWhichIsLighter() {
        byte[] one = new byte[16];
        byte[] other = new byte[16];
        other[0] = 5;
        one[5] = 7;
        Picture picture = Picture.of(ImageDifference.of("R8G8B8A8", 2, 2, 8, one, other).picture());
        assertEquals("lighter in the other", 128 + 8 * 5, picture.byteAt(0, 0, 0));
        assertEquals("darker in the other", 128 - 8 * 7, picture.byteAt(1, 0, 1));
        assertEquals("equal", 128, picture.byteAt(1, 1, 2));
    }

    @Test
    public void returnsNullForInvalidDescriptions() {
        Object[][] rows = {
            {"NV99", 4, 4, 4, 24}, {"NV21", 4, 4, 4, 23}, {"NV21", 0, 4, 4, 24}, {"NV21", 4, 0, 4, 24},
            {"JPEG", 4, 4, 4, 24}, {"MIPI_RAW10", 8, 2, 10, 19}, {"RAW16", 2, 2, 4, 7},
            // Strides that are too small for a row's pixels, and sizes whose product overflows an int.
            {"NV21", 6, 4, 4, 24}, {"R8G8B8A8", 2, 2, 4, 8}, {"RAW16", 1 << 16, 1 << 16, 1 << 17, 8},
            {"R8G8B8A8", 1 << 14, 1 << 16, 1 << 16, 8},
        };
        for (Object[] row : rows) {
            byte[] bytes = new byte[(int) row[4]];
            assertNull(Arrays.toString(row), ImageDifference.of((String) row[0], (int) row[1],
                    (int) row[2], (int) row[3], bytes, bytes));
        }
        // If the sides are odd, the memory may end before the last chroma pair; reading the pair would throw.
        for (int height = 3; height < 6; ++height) {
            byte[] bytes = new byte[5 * height + 5 * height / 2];
            ImageDifference.of("NV21", 5, height, 5, bytes, bytes);
            ImageDifference.of("YU12", 5, height, 5, bytes, bytes);
        }
        assertNotNull(ImageDifference.of("NV21", 4, 4, 4, new byte[24], new byte[30]));
    }
}
