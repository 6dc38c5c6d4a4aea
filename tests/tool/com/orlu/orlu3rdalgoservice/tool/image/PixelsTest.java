package com.orlu.orlu3rdalgoservice.tool.image;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNull;

import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import org.junit.Test;

import java.awt.image.BufferedImage;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.Arrays;
import java.util.HexFormat;
import java.util.Random;

/** Tests where each format stores its samples, and computations on samples. */
public final class PixelsTest {
    /** Initial content of the memory; the pictures never contain this value. */
    private static final byte UNTOUCHED = (byte) 0xEE;

    private static ImagePlan plan(PixelFormat format, int width, int height, int stride, int bits) {
        return new ImagePlan(
                format, format.name(), false, width, height, stride, 0, bits, 0, null, null);
    }

    private static ByteBuffer memory(int size) {
        byte[] bytes = new byte[size];
        Arrays.fill(bytes, UNTOUCHED);
        return ByteBuffer.wrap(bytes).order(ByteOrder.LITTLE_ENDIAN);
    }

    private static ByteBuffer hex(String text) {
        return ByteBuffer.wrap(HexFormat.of().parseHex(text.replace(" ", ""))).order(ByteOrder.LITTLE_ENDIAN);
    }

    /** Returns four blocks of two by two pixels: red and green at the top, blue and white at the bottom. */
    private static Picture blocks() {
        Picture picture = new Picture(4, 4);
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 4; ++x) {
                boolean isWhite = x > 1 && y > 1;
                picture.set(x, y, isWhite || x < 2 && y < 2 ? 255 : 0, x > 1 ? 255 : 0, y > 1 ? 255 : 0);
            }
        }
        return picture;
    }

    private static String text(PixelRows rows) {
        Picture picture = Picture.of(rows);
        StringBuilder text = new StringBuilder();
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                text.append(x > 0 ? " " : y > 0 ? "; " : "");
                for (int channel = 0; channel < Picture.CHANNELS; ++channel) {
                    text.append("%02x".formatted(picture.byteAt(x, y, channel)));
                }
            }
        }
        return text.toString();
    }

    @Test
    public void writesEachFormat() {
        // Luma, blue chroma and red chroma, in hex: 4c 55 ff for red, 96 2c 15 for green, 1d ff 6b for blue.
        String luma = "4c4c9696 4c4c9696 1d1dffff 1d1dffff";
        String padded = "4c4c9696eeee 4c4c9696eeee 1d1dffffeeee 1d1dffffeeee";
        Object[][] rows = {
            {PixelFormat.NV21, 0, luma + "ff55152c 6bff8080"},
            {PixelFormat.NV12, 0, luma + "55ff2c15 ff6b8080"},
            {PixelFormat.YU12, 0, luma + "552c ff80 ff15 6b80"},
            {PixelFormat.YV12, 0, luma + "ff15 6b80 552c ff80"},
            {PixelFormat.NV21, 6, padded + "ff55152ceeee 6bff8080eeee"},
            {PixelFormat.YV12, 6, padded + "ff15ee 6b80ee 552cee ff80ee"},
            {PixelFormat.R8G8B8A8, 20, "ff0000ff ff0000ff 00ff00ff 00ff00ff eeeeeeee".repeat(2)
                + "0000ffff 0000ffff ffffffff ffffffff eeeeeeee".repeat(2)},
        };
        for (Object[] row : rows) {
            ImagePlan plan = plan((PixelFormat) row[0], 4, 4, (int) row[1], 0);
            ByteBuffer wanted = hex((String) row[2]);
            ByteBuffer to = memory(wanted.capacity());
            PixelWriter.write(blocks(), plan, to);
            assertEquals(row[0] + ", stride " + row[1], HexFormat.of().formatHex(wanted.array()),
                    HexFormat.of().formatHex(to.array()));
        }
    }

    @Test
    public void readsEachFormat() {
        // Luma, blue chroma and red chroma, in hex: 64 80 70 for the left block, 80 90 80 for the right.
        String luma = "64648080 64648080";
        String wanted = "4e6f64 4e6f64 807a9c 807a9c";
        Object[][] rows = {
            {PixelFormat.NV21, 4, luma + "7080 8090"},
            {PixelFormat.NV12, 4, luma + "8070 9080"},
            {PixelFormat.YU12, 4, luma + "8090 7080"},
            {PixelFormat.YV12, 4, luma + "7080 8090"},
            {PixelFormat.YU12, 6, "64648080eeee 64648080eeee 8090ee 7080ee"},
            {PixelFormat.NV12, 8, "64648080eeeeeeee 64648080eeeeeeee 80709080eeeeeeee"},
        };
        for (Object[] row : rows) {
            PixelRows read = PixelReader.picture(
                    plan((PixelFormat) row[0], 4, 2, (int) row[1], 0), hex((String) row[2]));
            assertEquals(row[0] + ", stride " + row[1], wanted + "; " + wanted, text(read));
        }
        assertEquals("010203 040506; 070809 0a0b0c", text(PixelReader.picture(
                plan(PixelFormat.R8G8B8A8, 2, 2, 12, 0),
                hex("010203ff 040506ff eeeeeeee 070809ff 0a0b0cff eeeeeeee"))));
        assertNull("no JPEG", PixelReader.decodeJpeg(new byte[] {1, 2, 3}));
    }

    @Test
    public void packsRawSamples() {
        int[] samples = {0x3FF, 0x001, 0x2A2, 0x1C3, 0x004, 0x155, 0x3A8, 0x20F};
        Object[][] rows = {
            // The fifth byte contains the lower two bits of each sample, the first sample's in bits 0-1.
            {PixelFormat.MIPI_RAW10, 10, 8, 12, "ff00a870e7 0155ea83c4 eeee"},
            {PixelFormat.RAW16, 16, 8, 18, "ff030100a202c301 04005501a8030f02 eeee"},
            {PixelFormat.RAW_SENSOR, 12, 4, 0, "ff030100a202c301 04005501a8030f02"},
        };
        for (Object[] row : rows) {
            int width = (int) row[2];
            ImagePlan plan = plan((PixelFormat) row[0], width, 8 / width, (int) row[3], (int) row[1]);
            ByteBuffer wanted = hex((String) row[4]);
            ByteBuffer to = memory(wanted.capacity());
            new Mosaic(width, 8 / width, 10, samples).copyTo(PixelWriter.samples(plan, to));
            assertEquals(row[0].toString(), HexFormat.of().formatHex(wanted.array()),
                    HexFormat.of().formatHex(to.array()));
            assertArrayEquals(row[0].toString(), samples, PixelReader.readMosaic(plan, to).samples());
        }
        // 8-bit samples are stored in the upper eight of ten bits.
        ImagePlan narrow = plan(PixelFormat.MIPI_RAW10, 4, 1, 0, 8);
        ByteBuffer to = memory(5);
        new Mosaic(4, 1, 8, new int[] {255, 1, 128, 2}).copyTo(PixelWriter.samples(narrow, to));
        assertArrayEquals(new byte[] {(byte) 255, 1, (byte) 128, 2, 0}, to.array());
        assertArrayEquals(new int[] {255, 1, 128, 2}, PixelReader.readMosaic(narrow, to).samples());
        // Writing a row replaces all bits of the fifth byte.
        Arrays.fill(to.array(), (byte) 255);
        new Mosaic(4, 1, 10, new int[4]).copyTo(PixelWriter.samples(plan(narrow.format(), 4, 1, 0, 10), to));
        assertArrayEquals(new byte[5], to.array());
    }

    @Test
    public void filtersColors() {
        Picture picture = new Picture(2, 2);
        for (int i = 0; i < 4; ++i) {
            picture.set(i % 2, i / 2, 51, 102, 204);
        }
        Mosaic mosaic = Mosaic.of(picture, 10);
        assertArrayEquals("RGGB", new int[] {205, 409, 409, 818}, mosaic.samples());
        assertEquals(1023, mosaic.white());
        assertEquals("3366cc 3366cc; 3366cc 3366cc", text(new Demosaic(mosaic)));
        // A missing colour is the mean of adjacent samples of that colour; a mosaic of one row has no blue.
        assertEquals("ff1400 aa1400 551400",
                text(new Demosaic(new Mosaic(3, 1, 8, new int[] {255, 20, 85}))));
    }

    @Test
    public void measuresNoise() {
        Picture black = new Picture(10, 10);
        Picture one = new Picture(10, 10);
        one.set(3, 4, 255, 255, 255);
        Mosaic dark = new Mosaic(10, 10, 10, new int[100]);
        Mosaic raw = new Mosaic(10, 10, 10, new int[100]);
        raw.samples()[7] = 1023;
        Object[][] rows = {
            {"one pixel of a hundred", 20.0, Psnr.ofLuma(black, one)},
            {"one sample of a hundred", 20.0, Psnr.ofMosaic(dark, raw)},
            {"equal", Double.POSITIVE_INFINITY, Psnr.ofLuma(one, one)},
            {"equal samples", Double.POSITIVE_INFINITY, Psnr.ofMosaic(raw, raw)},
            {"wider", Double.NaN, Psnr.ofLuma(black, new Picture(11, 10))},
            {"taller", Double.NaN, Psnr.ofLuma(black, new Picture(10, 11))},
            {"taller samples", Double.NaN, Psnr.ofMosaic(dark, new Mosaic(10, 11, 10, new int[110]))},
        };
        for (Object[] row : rows) {
            assertEquals((String) row[0], (double) row[1], (double) row[2], 1e-4);
        }
    }

    @Test
    public void changesPictures() {
        Picture point = new Picture(9, 9);
        point.set(4, 4, 200, 100, 50);
        Picture blurred = point.blurred(1);
        // The point keeps 0.399 * 0.399 of its value; the blur is symmetric.
        assertEquals("201008", text(blurred.crop(4, 4, 1, 1)));
        assertEquals(text(blurred.crop(3, 4, 1, 1)), text(blurred.crop(5, 4, 1, 1)));
        assertEquals(text(blurred.crop(4, 2, 1, 1)), text(blurred.crop(4, 6, 1, 1)));
        Picture even = new Picture(3, 3);
        for (int i = 0; i < 9; ++i) {
            even.set(i % 3, i / 3, 90, 300, -5);
        }
        assertEquals("edge pixels extend outside", "5aff00", text(even.blurred(2).crop(0, 2, 1, 1)));
        assertEquals("b4ff00", text(even.brightened(2).crop(1, 1, 1, 1)));
        Picture grey = new Picture(64, 64);
        Picture noisy = grey.brightened(1);
        for (int i = 0; i < 64 * 64; ++i) {
            noisy.set(i % 64, i / 64, 128, 128, 128);
        }
        // Noise of deviation 8 on each channel is 8 * sqrt(0.299^2 + 0.587^2 + 0.114^2) = 5.35 in luma.
        assertEquals(33.6, Psnr.ofLuma(noisy, noisy.withNoise(8, new Random(1))), 0.3);
        assertEquals(text(noisy.withNoise(8, new Random(7))), text(noisy.withNoise(8, new Random(7))));
    }

    @Test
    public void readsPicturesOfAnyDepth() {
        BufferedImage grey = new BufferedImage(2, 1, BufferedImage.TYPE_USHORT_GRAY);
        grey.getRaster().setSample(0, 0, 0, 0x8080);
        grey.getRaster().setSample(1, 0, 0, 0xFFFF);
        assertEquals("gray samples are not linear light", "808080 ffffff", text(new ImageRows(grey)));
        BufferedImage bits = new BufferedImage(2, 1, BufferedImage.TYPE_BYTE_BINARY);
        bits.setRGB(1, 0, 0xFFFFFF);
        assertEquals("000000 ffffff", text(new ImageRows(bits)));
        BufferedImage colors = new BufferedImage(1, 1, BufferedImage.TYPE_3BYTE_BGR);
        colors.setRGB(0, 0, 0x112233);
        assertEquals("112233", text(new ImageRows(colors)));
        assertEquals(0x112233, new ImageRows(colors).toImage().getRGB(0, 0) & 0xFFFFFF);
    }

    @Test
    public void showsVeryNarrowPictures() {
        for (int[] size : new int[][] {{1, 4097}, {4097, 1}, {3, 9000}}) {
            Picture picture = new Picture(size[0], size[1]);
            picture.set(0, size[1] - 1, 255, 255, 255);
            BufferedImage shown = ShownImage.of(picture);
            int lowest = shown.getRGB(0, shown.getHeight() - 1) & 0xFF;
            assertEquals(Arrays.toString(size), true, lowest > 0);
        }
    }

    @Test
    public void measuresLargePicturesAndShowsThemSmaller() {
        // Each row of random dots is shifted by 5 pixels from the row above. The picture is too wide for a
        // page to show in full size.
        Random random = new Random(3);
        float[] dots = new float[4200 + 5 * 901];
        for (int i = 0; i < dots.length; ++i) {
            dots[i] = i > 0 && i % 16 != 0 ? dots[i - 1] : random.nextInt(256);
        }
        Picture picture = new Picture(4101, 901);
        for (int y = 0; y < 901; ++y) {
            for (int x = 0; x < 4101; ++x) {
                float level = dots[5 * (901 - y) + x];
                picture.set(x, y, level, level, level);
            }
        }
        PictureFacts facts = new PictureFacts(picture);
        assertEquals(5, facts.shear());
        BufferedImage shown = facts.takeShown();
        assertEquals("a quarter", "1025x225", shown.getWidth() + "x" + shown.getHeight());
        float mean = 0;
        for (int i = 0; i < 16; ++i) {
            mean += picture.get(8 + i % 4, 4 + i / 4, 0) / 16;
        }
        assertEquals("mean of 4x4 pixels", Math.round(mean), shown.getRGB(2, 1) >> 16 & 255);
    }
}
