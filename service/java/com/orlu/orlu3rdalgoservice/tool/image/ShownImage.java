package com.orlu.orlu3rdalgoservice.tool.image;

import java.awt.image.BufferedImage;
import java.awt.image.DataBufferByte;
import java.util.Arrays;

/** Makes the image that a page shows: in full size, or reduced by a factor of 2, 4, 8, ... if large. */
final class ShownImage {
    /** Limit of the longer side, in pixels. A screen can't show two larger images side by side. */
    private static final int LARGEST_SIDE = 2048;
    private static final int CHANNELS = PixelRows.CHANNELS;

    private final int mFactor;
    private final int mWidth;
    private final int mHeight;
    private final BufferedImage mImage;
    private final byte[] mPixels;
    private final float[] mSums;

    ShownImage(int width, int height) {
        int factor = 1;
        // A very narrow picture keeps at least one pixel in each direction.
        while (Math.max(width, height) / factor > LARGEST_SIDE && Math.min(width, height) / factor > 1) {
            factor *= 2;
        }
        mFactor = factor;
        mWidth = width / factor;
        mHeight = height / factor;
        mImage = new BufferedImage(mWidth, mHeight, BufferedImage.TYPE_3BYTE_BGR);
        mPixels = ((DataBufferByte) mImage.getRaster().getDataBuffer()).getData();
        mSums = new float[mWidth * CHANNELS];
    }

    /** Returns the image of a whole picture. */
    static BufferedImage of(PixelRows picture) {
        ShownImage shown = new ShownImage(picture.width(), picture.height());
        picture.forEachRow(shown::add);
        return shown.image();
    }

    /** Adds the next row; keeps no reference to it. All rows must be added, from the top. */
    void add(int y, float[] row) {
        int to = y / mFactor;
        if (to >= mHeight) {
            return;
        }
        if (mFactor == 1) {
            PixelRows.pack(row, mPixels, to * mSums.length, mWidth);
            return;
        }
        for (int x = 0, at = 0; x < mWidth * CHANNELS; x += CHANNELS) {
            for (int i = 0; i < mFactor; ++i, at += CHANNELS) {
                mSums[x] += row[at];
                mSums[x + 1] += row[at + 1];
                mSums[x + 2] += row[at + 2];
            }
        }
        if (y % mFactor == mFactor - 1) {
            for (int i = 0; i < mSums.length; ++i) {
                mSums[i] /= mFactor * mFactor;
            }
            PixelRows.pack(mSums, mPixels, to * mSums.length, mWidth);
            Arrays.fill(mSums, 0);
        }
    }

    BufferedImage image() {
        return mImage;
    }
}
