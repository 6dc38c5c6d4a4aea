package com.orlu.orlu3rdalgoservice.tool.image;

import java.awt.image.BufferedImage;
import java.awt.image.DataBufferByte;
import java.io.IOException;
import java.io.OutputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.stream.IntStream;

import javax.imageio.IIOImage;
import javax.imageio.ImageIO;
import javax.imageio.ImageWriteParam;
import javax.imageio.ImageWriter;
import javax.imageio.stream.ImageOutputStream;
import javax.imageio.stream.MemoryCacheImageOutputStream;

/** A colour picture, read row by row to avoid copying large pictures. Several threads may read at once. */
public interface PixelRows {
    int CHANNELS = 3;
    /** Number of rows that are read in parallel. */
    int BAND = 32;
    float WHITE = 255;
    /** The compression of PNG files: zlib's level 1. */
    float FAST = 8f / 9;

    int width();

    int height();

    /** Fills the array with red, green and blue of each pixel of a row: floats from 0 to 255. */
    void read(int y, float[] to);

    /** Luma, by JPEG's weights, of the pixel whose red sample is at this index. */
    static float luma(float[] row, int at) {
        return 0.299f * row[at] + 0.587f * row[at + 1] + 0.114f * row[at + 2];
    }

    // Avoids Math.min and Math.max of floats, which simple compilers do not inline.
    static float clip(float value) {
        return value < 0 ? 0 : value > WHITE ? WHITE : value;
    }

    /** Rounds a sample, which must not be negative. Compiles to fewer instructions than Math.round. */
    static int round(float sample) {
        return (int) (sample + 0.5);
    }

    /** Packs a row in the form of BufferedImage.TYPE_3BYTE_BGR, which encoders copy fastest. */
    static void pack(float[] row, byte[] to, int offset, int width) {
        for (int at = 0; at < width * CHANNELS; at += CHANNELS) {
            to[offset + at] = (byte) round(row[at + 2]);
            to[offset + at + 1] = (byte) round(row[at + 1]);
            to[offset + at + 2] = (byte) round(row[at]);
        }
    }

    /** Receives rows; each array is valid only during the call. */
    interface RowTaker {
        void take(int y, float[] row);
    }

    /** Reads all rows, several in parallel, and passes them to `taker` from top to bottom. */
    default void forEachRow(RowTaker taker) {
        float[][] rows = new float[BAND][width() * CHANNELS];
        for (int top = 0; top < height(); top += BAND) {
            int start = top;
            int end = Math.min(top + BAND, height());
            IntStream.range(start, end).parallel().forEach(y -> read(y, rows[y - start]));
            IntStream.range(start, end).forEach(y -> taker.take(y, rows[y - start]));
        }
    }

    /** Returns an image of the same size, of type TYPE_3BYTE_BGR. */
    default BufferedImage toImage() {
        BufferedImage image = new BufferedImage(width(), height(), BufferedImage.TYPE_3BYTE_BGR);
        byte[] pixels = ((DataBufferByte) image.getRaster().getDataBuffer()).getData();
        forEachRow((y, row) -> pack(row, pixels, y * row.length, width()));
        return image;
    }

    default void writePng(Path file) throws IOException {
        ImageWriter writer = ImageIO.getImageWritersByFormatName("png").next();
        ImageWriteParam setting = writer.getDefaultWriteParam();
        setting.setCompressionMode(ImageWriteParam.MODE_EXPLICIT);
        setting.setCompressionQuality(FAST);
        // Passes a stream, not the file: ImageIO prints a stack trace if it can't write a file.
        try (OutputStream bytes = Files.newOutputStream(file);
                ImageOutputStream png = new MemoryCacheImageOutputStream(bytes)) {
            writer.setOutput(png);
            writer.write(null, new IIOImage(toImage(), null, null), setting);
        } finally {
            writer.dispose();
        }
    }
}
