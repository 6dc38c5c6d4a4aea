package com.orlu.orlu3rdalgoservice.tool.image;

/** Makes a colour picture of raw samples, to be looked at: no white balance, no tone curve. */
public final class Demosaic {
    private final Mosaic mMosaic;

    private Demosaic(Mosaic mosaic) {
        mMosaic = mosaic;
    }

    /** A picture of the mosaic's size. What a pixel's sample lacks is the mean of its neighbours' samples. */
    public static Picture of(Mosaic mosaic) {
        Demosaic demosaic = new Demosaic(mosaic);
        Picture picture = new Picture(mosaic.width(), mosaic.height());
        for (int y = 0; y < mosaic.height(); ++y) {
            for (int x = 0; x < mosaic.width(); ++x) {
                picture.set(x, y, demosaic.mean(x, y, 0), demosaic.mean(x, y, 1), demosaic.mean(x, y, 2));
            }
        }
        return picture;
    }

    // The channel's own sample, else the mean of those around it.
    private float mean(int x, int y, int channel) {
        float scale = Picture.WHITE / mMosaic.white();
        if (channelAt(x, y) == channel) {
            return mMosaic.samples()[y * mMosaic.width() + x] * scale;
        }
        int sum = 0;
        int count = 0;
        for (int atY = Math.max(0, y - 1); atY <= Math.min(mMosaic.height() - 1, y + 1); ++atY) {
            for (int atX = Math.max(0, x - 1); atX <= Math.min(mMosaic.width() - 1, x + 1); ++atX) {
                if (channelAt(atX, atY) == channel) {
                    sum += mMosaic.samples()[atY * mMosaic.width() + atX];
                    ++count;
                }
            }
        }
        return count == 0 ? 0 : sum * scale / count;
    }

    private static int channelAt(int x, int y) {
        return y % 2 + x % 2;
    }
}
