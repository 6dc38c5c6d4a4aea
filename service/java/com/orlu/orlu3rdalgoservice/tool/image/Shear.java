package com.orlu.orlu3rdalgoservice.tool.image;

/**
 * Finds whether a picture's rows are each moved against the one above by the same number of pixels, as they
 * are when they were written with one stride and read with another. In a picture that is right, neighbouring
 * rows fit best where they are.
 */
final class Shear {
    private static final int FARTHEST = 128;
    /** A slanted edge makes rows fit best a pixel or two beside. */
    private static final int LEAST = 3;
    private static final int SMOOTHED = 8;
    private static final int ROW_STEP = 2;
    private static final int COLUMN_STEP = 2;
    /** How much better than unmoved rows moved ones must fit. */
    private static final double RATIO = 1.25;
    /** Levels; rows that are all alike fit anywhere. */
    private static final double LEAST_DIFFERENCE = 1;

    private final float[] mSmooth;
    private final int mWidth;
    private final int mHeight;

    Shear(float[] luma, int width, int height) {
        mWidth = width;
        mHeight = height;
        mSmooth = smoothed(luma, width, height);
    }

    // Means of a few pixels beside each other: noise would hide what fits.
    private static float[] smoothed(float[] luma, int width, int height) {
        float[] smooth = new float[luma.length];
        for (int y = 0; y < height; ++y) {
            float sum = 0;
            for (int x = 0; x < width; ++x) {
                int at = y * width + x;
                sum += luma[at] - (x >= SMOOTHED ? luma[at - SMOOTHED] : 0);
                smooth[at] = sum / Math.min(SMOOTHED, x + 1);
            }
        }
        return smooth;
    }

    /** To the right, below 0 to the left; 0 for none. */
    int pixels() {
        int farthest = Math.min(FARTHEST, mWidth / 4);
        double unmoved = difference(0, farthest);
        int best = 0;
        double least = unmoved;
        for (int move = -farthest; move <= farthest; ++move) {
            double difference = difference(move, farthest);
            if (difference < least) {
                least = difference;
                best = move;
            }
        }
        boolean isClear = unmoved > RATIO * least && unmoved > LEAST_DIFFERENCE;
        return Math.abs(best) >= LEAST && isClear ? best : 0;
    }

    private double difference(int move, int margin) {
        double sum = 0;
        int count = 0;
        for (int y = 0; y + 1 < mHeight; y += ROW_STEP) {
            for (int x = margin + SMOOTHED; x < mWidth - margin; x += COLUMN_STEP) {
                sum += Math.abs(mSmooth[y * mWidth + x] - mSmooth[(y + 1) * mWidth + x + move]);
                ++count;
            }
        }
        return count == 0 ? 0 : sum / count;
    }
}
