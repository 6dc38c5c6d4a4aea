package com.orlu.orlu3rdalgoservice.tool.image;

import java.awt.image.BufferedImage;
import java.awt.image.DataBufferInt;
import java.io.IOException;
import java.io.OutputStream;
import java.nio.file.Files;
import java.nio.file.Path;

import javax.imageio.ImageIO;
import javax.imageio.stream.ImageOutputStream;
import javax.imageio.stream.MemoryCacheImageOutputStream;

/**
 * A colour picture that is read row by row, so that a large one needs no copy of its pixels. Several threads
 * may read it at once.
 */
public interface PixelRows {
    int CHANNELS = 3;
    float WHITE = 255;

    int width();

    int height();

    /** Fills the array with red, green and blue of each pixel of a row, from 0 to 255, with fractions. */
    void read(int y, float[] to);

    /** Luma by JPEG's weights, of the pixel whose red is at this index. */
    static float luma(float[] row, int at) {
        return 0.299f * row[at] + 0.587f * row[at + 1] + 0.114f * row[at + 2];
    }

    // Simple compilers call Math.min and Math.max of floats as functions.
    static float clip(float value) {
        return value < 0 ? 0 : value > WHITE ? WHITE : value;
    }

    /** Replaces Math.round for samples, which are never negative; compiles to a single instruction. */
    static int round(float sample) {
        return (int) (sample + 0.5);
    }

    /** Packs a row in the form of BufferedImage.TYPE_INT_RGB. */
    static void pack(float[] row, int[] to, int offset, int width) {
        for (int x = 0, at = 0; x < width; ++x, at += CHANNELS) {
            to[offset + x] = round(row[at]) << 16 | round(row[at + 1]) << 8 | round(row[at + 2]);
        }
    }

    /** Makes an image of the same size, of type TYPE_INT_RGB. */
    default BufferedImage toImage() {
        BufferedImage image = new BufferedImage(width(), height(), BufferedImage.TYPE_INT_RGB);
        int[] pixels = ((DataBufferInt) image.getRaster().getDataBuffer()).getData();
        float[] row = new float[width() * CHANNELS];
        for (int y = 0; y < height(); ++y) {
            read(y, row);
            pack(row, pixels, y * width(), width());
        }
        return image;
    }

    /** Writes a PNG file. */
    default void writePng(Path file) throws IOException {
        // Given the file itself, ImageIO prints a stack trace if it can't write.
        try (OutputStream bytes = Files.newOutputStream(file);
                ImageOutputStream png = new MemoryCacheImageOutputStream(bytes)) {
            ImageIO.write(toImage(), "png", png);
        }
    }
}
