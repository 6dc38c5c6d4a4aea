package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.imagefile.SampleSink;

import java.util.Arrays;

/**
 * Raw samples of an RGGB colour filter, row by row. read() returns each sample as a grey pixel.
 *
 * @param bits bit depth; a white sample has all bits set
 */
public record Mosaic(int width, int height, int bits, int[] samples) implements PixelRows {
    public static Mosaic of(Picture picture, int bits) {
        Mosaic mosaic = new Mosaic(picture.width(), picture.height(), bits,
                new int[picture.width() * picture.height()]);
        float scale = mosaic.white() / WHITE;
        for (int y = 0; y < mosaic.height; ++y) {
            for (int x = 0; x < mosaic.width; ++x) {
                mosaic.samples[y * mosaic.width + x] = Math.round(picture.get(x, y, channelAt(x, y)) * scale);
            }
        }
        return mosaic;
    }

    @Override
    public void read(int y, float[] to) {
        float scale = WHITE / white();
        for (int x = 0; x < width; ++x) {
            Arrays.fill(to, x * CHANNELS, (x + 1) * CHANNELS, samples[y * width + x] * scale);
        }
    }

    /** Passes all samples to `to`, row by row. */
    void copyTo(SampleSink to) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                to.put(x, y, samples[y * width + x]);
            }
        }
    }

    /** The channel of the sample at this place: 0 is red, 1 green, 2 blue. */
    static int channelAt(int x, int y) {
        return y % 2 + x % 2;
    }

    public int white() {
        return (1 << bits) - 1;
    }
}
