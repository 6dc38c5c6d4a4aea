package com.orlu.orlu3rdalgoservice.tool.image;

/**
 * Raw samples as a colour picture for viewing, without white balance or tone curve. The two colours that a
 * pixel lacks are means of adjacent samples.
 */
public record Demosaic(Mosaic mosaic) implements PixelRows {
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
        int[] sums = new int[CHANNELS];
        int[] counts = new int[CHANNELS];
        for (int x = 0; x < width(); ++x) {
            for (int channel = 0; channel < CHANNELS; ++channel) {
                sums[channel] = counts[channel] = 0;
            }
            for (int atY = Math.max(0, y - 1); atY <= Math.min(height() - 1, y + 1); ++atY) {
                for (int atX = Math.max(0, x - 1); atX <= Math.min(width() - 1, x + 1); ++atX) {
                    sums[Mosaic.channelAt(atX, atY)] += mosaic.samples()[atY * width() + atX];
                    ++counts[Mosaic.channelAt(atX, atY)];
                }
            }
            int own = Mosaic.channelAt(x, y);
            sums[own] = mosaic.samples()[y * width() + x];
            counts[own] = 1;
            for (int channel = 0; channel < CHANNELS; ++channel) {
                to[x * CHANNELS + channel] = counts[channel] == 0 ? 0
                        : PixelRows.clip(sums[channel] * scale / counts[channel]);
            }
        }
    }
}
