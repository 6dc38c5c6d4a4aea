package com.orlu.orlu3rdalgoservice.tool.image;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNotEquals;
import static org.junit.Assert.assertNotNull;
import static org.junit.Assert.assertNull;

import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import org.junit.Test;

import java.awt.image.BufferedImage;
import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.nio.ByteBuffer;
import java.util.Arrays;
import java.util.HexFormat;

import javax.imageio.ImageIO;

/**
 * Tests that the tool rejects invalid image descriptions from an algorithm library, and JPEGs that are too
 * large for the memory.
 */
public final class OutputReaderTest {
    @Test
    public void rejectsRowsShorterThanTheirPixels() {
        Object[][] rows = {
            {PixelFormat.NV21, 8, 8, ""},
            {PixelFormat.NV21, 8, 12, ""},
            {PixelFormat.NV21, 8, 0, "described with rows of 0 bytes; 8 pixels need 8"},
            {PixelFormat.NV21, 8, -8, "described with rows of -8 bytes; 8 pixels need 8"},
            {PixelFormat.RAW16, 8, 8, "described with rows of 8 bytes; 8 pixels need 16"},
            {PixelFormat.MIPI_RAW10, 6, 8, "described with rows of 8 bytes; 6 pixels need 10"},
            {PixelFormat.R8G8B8A8, 1 << 30, 8, "described with an invalid size: 1073741824x2"},
            {PixelFormat.NV21, 8, null, "described without a row stride"},
        };
        for (Object[] row : rows) {
            VImageIPC image = new VImageIPC();
            image.mWidth = (int) row[1];
            image.mHeight = 2;
            image.mRowStrides = row[2] == null ? new int[0] : new int[] {(int) row[2]};
            assertEquals(row[3], OutputReader.problemOf((PixelFormat) row[0], image));
        }
    }

    @Test
    public void toleratesPlanesOfAnySize() {
        VImageIPC image = new VImageIPC();
        image.mFormat = "NV21";
        image.mWidth = 2;
        image.mRowStrides = new int[] {1};
        for (int[] sizes : new int[][] {
            {1 << 30, 1 << 30, Integer.MAX_VALUE}, {Integer.MIN_VALUE, Integer.MAX_VALUE, 1 << 30}}) {
            image.mPlaneSizes = sizes;
            long end = Arrays.stream(sizes).filter(size -> size > 0).asLongStream().sum();
            MemoryUse use = new MemoryUse(image, PixelFormat.NV21, ByteBuffer.allocate(16));
            assertEquals(end - 16, use.missing());
            assertEquals(0, use.usedBehind());
        }
    }

    @Test
    public void decodesOnlyJpegsThatFitIntoMemory() throws IOException {
        ByteArrayOutputStream file = new ByteArrayOutputStream();
        ImageIO.write(new BufferedImage(16, 16, BufferedImage.TYPE_INT_RGB), "jpg", file);
        String jpeg = HexFormat.of().formatHex(file.toByteArray());
        assertNotNull(PixelReader.decodeJpeg(HexFormat.of().parseHex(jpeg)));
        // The picture's size follows the marker, the segment's length, and the number of bits per sample.
        String large = jpeg.replaceFirst("ffc0(....)08........", "ffc0$10880004000");
        assertNotEquals(jpeg, large);
        assertNull(PixelReader.decodeJpeg(HexFormat.of().parseHex(large)));
    }
}
