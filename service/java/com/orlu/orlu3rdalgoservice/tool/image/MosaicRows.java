package com.orlu.orlu3rdalgoservice.tool.image;

import java.util.Arrays;

/** A mosaic as a grey picture. */
public record MosaicRows(Mosaic mosaic) implements PixelRows {
    @Override
    public int width() {
        return mosaic.width();
    }

    @Override
    public int height() {
        return mosaic.height();
    }

    @Override
    public void read(int y, float[] to) {
        float scale = WHITE / mosaic.white();
        for (int x = 0; x < width(); ++x) {
            Arrays.fill(to, x * CHANNELS, (x + 1) * CHANNELS, mosaic.samples()[y * width() + x] * scale);
        }
    }
}
