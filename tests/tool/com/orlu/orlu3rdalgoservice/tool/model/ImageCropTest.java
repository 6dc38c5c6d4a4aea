package com.orlu.orlu3rdalgoservice.tool.model;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertNull;
import static org.junit.Assert.assertThrows;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.nio.file.Path;
import java.util.Arrays;
import java.util.HexFormat;

import org.junit.Test;

/** Tests the bytes and the description of a cropped image. */
public final class ImageCropTest {
    private static ImageLayout image(
            String format, int width, int height, String strides, String sizes, int size) {
        return image(format, width, height, strides, sizes, size, "");
    }

    private static ImageLayout image(
            String format, int width, int height, String strides, String sizes, int size, String buffer) {
        String text = ("{'format': '%s', 'width': %d, 'height': %d, 'rowStrides': %s, 'planeSizes': %s, "
                + "'size': %d, 'file': 'x', 'crc': '', 'memory': '%s'%s}").formatted(format, width, height,
                        strides,
                        sizes, size, buffer.isEmpty() ? "shared" : "hardware",
                        buffer.isEmpty() ? "" : ", 'buffer': " + buffer);
        try {
            return ImageLayout.read(Path.of("f"), Json.parse("f", 1, text.replace('\'', '"')));
        } catch (MistakeException e) {
            throw new AssertionError(e);
        }
    }

    private static byte[] offsets(int size) {
        byte[] bytes = new byte[size];
        for (int i = 0; i < size; ++i) {
            bytes[i] = (byte) i;
        }
        return bytes;
    }

    // Format, row strides, plane sizes and total size of an image of 8x4 pixels; the area to keep; row
    // strides, plane sizes and bytes of the cropped image. Its padding is 00.
    private static final Object[][] ROWS = {
        {"R8G8B8A8", "[32]", "[128]", 128, "4,0,4,2", "[16]", "[32]",
            "101112131415161718191a1b1c1d1e1f 303132333435363738393a3b3c3d3e3f"},
        {"RAW16", "[18]", "[72]", 72, "4,2,4,2", "[10]", "[20]", "2c2d2e2f303132330000 3e3f4041424344450000"},
        {"MIPI_RAW10", "[10]", "[40]", 40, "4,2,4,2", "[5]", "[10]", "191a1b1c1d 2324252627"},
        {"NV21", "[8,8]", "[32,16]", 48, "4,2,4,2", "[4,4]", "[8,4]", "14151617 1c1d1e1f 2c2d2e2f"},
        {"NV12", "[8,10]", "[32,20]", 52, "0,2,4,2", "[4,6]", "[8,6]", "10111213 18191a1b 2a2b2c2d0000"},
        {"YU12", "[8,4]", "[32,16]", 48, "4,0,4,2", "[4,2]", "[8,4]", "04050607 0c0d0e0f 2223 2a2b"},
        {"YV12", "[10,5]", "[40,20]", 60, "4,2,4,2", "[6,3]", "[12,6]",
            "18191a1b0000 222324250000 2f3000 393a00"},
        // Padding in the luma plane (a row), in the chroma plane (4 bytes) and after the planes (4 bytes).
        {"NV21", "[8,8]", "[40,20]", 64, "4,2,4,2", "[4,4]", "[16,8]",
            "14151617 1c1d1e1f 0000000000000000 34353637 00000000 00000000"},
        // Without a chroma stride, planar chroma has half the luma stride.
        {"YU12", "[8]", "[32]", 48, "4,2,4,2", "[4]", "[8]", "14151617 1c1d1e1f 2627 2e2f"},
        // The last row lacks its padding.
        {"RAW16", "[20]", "[76]", 76, "0,2,4,2", "[12]", "[20]", "28292a2b2c2d2e2f00000000 3c3d3e3f40414243"},
    };

    @Test
    public void cropsToTheArea() {
        for (Object[] row : ROWS) {
            String name = row[0] + " " + row[1] + row[2];
            ImageLayout image =
                    image((String) row[0], 8, 4, (String) row[1], (String) row[2], (int) row[3]);
            ImageCrop crop = ImageCrop.of(image, CropArea.parse((String) row[4]), "input 0");
            ImageLayout cropped = crop.image();
            assertEquals(name, row[5] + " " + row[6], JsonWriter.line(cropped.rowStrides()) + " "
                    + JsonWriter.line(cropped.planeSizes()));
            byte[] wanted = HexFormat.of().parseHex(((String) row[7]).replace(" ", ""));
            assertEquals(name + ", size", wanted.length, cropped.size());
            assertEquals(name + ", bytes", HexFormat.of().formatHex(wanted),
                    HexFormat.of().formatHex(crop.bytes(offsets((int) row[3]))));
            assertEquals(name, "4x2", cropped.width() + "x" + cropped.height());
            assertEquals("the original is unchanged", 8, image.width());
        }
    }

    @Test
    public void describesBuffers() {
        Object[][] rows = {
            // Width and height of the buffer; its size after the crop. A byte buffer (of height 1) becomes as
            // wide as the cropped image has bytes. Other buffers lose as many columns and rows as the image.
            {128, 1, "32x1"}, {10, 4, "6x2"}, {8, 6, "4x4"},
        };
        for (Object[] row : rows) {
            ImageLayout image = image("R8G8B8A8", 8, 4, "[32]", "[128]", 128,
                    "[" + row[0] + ", " + row[1] + ", 1]");
            int[] buffer = ImageCrop.of(image, CropArea.parse("4,2"), "input 0").image().buffer();
            assertEquals(Arrays.toString(row), row[2], buffer[0] + "x" + buffer[1]);
        }
    }

    @Test
    public void rejectsInvalidImages() {
        Object[][] rows = {
            {image("RAW16", 8, 4, "[]", "[64]", 64), "--crop: input 0 has rows of unknown size"},
            {image("RAW16", 8, 4, "null", "[64]", 64), "--crop: input 0 has rows of unknown size"},
            {image("RAW16", 8, 4, "[15]", "[64]", 64), "--crop: input 0 has rows of 15 bytes; its width needs 16"},
            {image("RAW16", 8, 4, "[16]", "[56]", 55), "--crop: input 0 has 55 bytes, fewer than its rows need"},
            {image("NV21", 8, 4, "[8,8]", "[32,16]", 47),
                    "--crop: input 0 has 47 bytes, fewer than its rows need"},
            {image("NV21", 8, 4, "[8,8]", "[16]", 48),
                    "--crop: input 0 has planes of [16] bytes, fewer than their rows need"},
            {image("NV21", 8, 4, "[8,8]", "[32,1]", 48),
                    "--crop: input 0 has planes of [32, 1] bytes, fewer than their rows need"},
            {image("RAW16", 4, 4, "[8]", "[32]", 32),
                "--crop: 4x2 from 4,2 exceeds input 0 of 4x4"},
        };
        for (Object[] row : rows) {
            assertEquals(row[1], assertThrows((String) row[1], IllegalArgumentException.class,
                    () -> ImageCrop.of((ImageLayout) row[0], CropArea.parse("4,2,4,2"), "input 0"))
                    .getMessage());
        }
        for (String format : new String[] {"JPEG", "XYZ"}) {
            assertNull(format, ImageCrop.of(image(format, 8, 4, "[8]", "[99]", 99),
                    CropArea.parse("4,2"), "input 0"));
        }
    }

    @Test
    public void placesAreas() {
        // Argument of --crop; image size; the resulting area, or "!" and a part of the error message.
        String[][] rows = {
            {"4,2", "20x10", "4x2 from 8,4"}, {"4,2", "22x13", "4x2 from 8,4"},
            {"8,6", "8x6", "8x6 from 0,0"},
            {"12,8,8,2", "20x10", "8x2 from 12,8"}, {"0,0,20,10", "20x10", "20x10 from 0,0"},
            {"16,0,8,2", "20x10", "!exceeds"}, {"0,10,4,2", "20x10", "!exceeds"},
            {"24,2", "20x10", "!exceeds"}, {"4,12", "20x10", "!exceeds"},
            {"6,2", "20x10", "!multiples of 4"}, {"4,3", "20x10", "!multiples of 4"},
            {"2,0,4,2", "20x10", "!multiples of 4"}, {"0,1,4,2", "20x10", "!multiples of 4"},
            {"0,2", "20x10", "!multiples of 4"}, {"4,0", "20x10", "!multiples of 4"},
            {"4", "20x10", "!WIDTH,HEIGHT or"}, {"4,2,4", "20x10", "!WIDTH,HEIGHT or"},
            {"-4,2", "20x10", "!WIDTH,HEIGHT or"}, {"1000000,2", "20x10", "!WIDTH,HEIGHT or"},
        };
        for (String[] row : rows) {
            String[] size = row[1].split("x");
            String found;
            try {
                found = CropArea.parse(row[0])
                        .in(Integer.parseInt(size[0]), Integer.parseInt(size[1]), "input 0").toString();
            } catch (IllegalArgumentException e) {
                found = row[2].startsWith("!") && e.getMessage().contains(row[2].substring(1)) ? row[2]
                        : e.getMessage();
            }
            assertEquals(row[0] + " of " + row[1], row[2], found);
        }
    }
}
