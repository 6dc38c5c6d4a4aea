package com.orlu.orlu3rdalgoservice.tool.image;

import java.util.ArrayList;
import java.util.List;

/**
 * Detects shear: each row is shifted by the same number of pixels relative to the row above, because the
 * image was written with one stride and read with another. In a correct picture, adjacent rows match best
 * unshifted.
 */
final class Shear {
    private static final int FARTHEST = 128;
    /** The smallest shift that counts: a slanted edge can shift the best match by a pixel or two. */
    private static final int LEAST = 3;
    private static final int SMOOTHED = 8;
    /** Rough limits on compared pairs of rows and pixels per row. Higher limits don't improve the result. */
    private static final int MOST_PAIRS = 384;
    private static final int MOST_COLUMNS = 512;
    /** In a sheared picture, unshifted rows differ at least this many times as much as shifted rows. */
    private static final double RATIO = 1.25;
    /**
     * In a sheared picture, unshifted rows differ by more than this mean, in levels. Rows that differ
     * less are so uniform that they match at any shift.
     */
    private static final double LEAST_DIFFERENCE = 1;

    private final int mWidth;
    private final int mRowStep;
    private final int mColumnStep;
    /** The rows of all pairs: rows 2n and 2n + 1 are pair n. */
    private final List<float[]> mRows = new ArrayList<>();

    Shear(int width, int height) {
        mWidth = width;
        mRowStep = Math.max(2, height / MOST_PAIRS);
        mColumnStep = Math.max(2, width / MOST_COLUMNS);
    }

    /** Adds the next row; keeps no reference to it. All rows must be added, from the top. */
    void add(int y, float[] luma) {
        if (y % mRowStep < 2) {
            mRows.add(smoothed(luma));
        }
    }

    // Returns means of a few adjacent pixels, because noise would hide the match.
    private float[] smoothed(float[] luma) {
        float[] smooth = new float[mWidth];
        float sum = 0;
        for (int x = 0; x < mWidth; ++x) {
            sum += luma[x] - (x >= SMOOTHED ? luma[x - SMOOTHED] : 0);
            smooth[x] = sum / Math.min(SMOOTHED, x + 1);
        }
        return smooth;
    }

    /** The shift per row: positive to the right, negative to the left, 0 if there is no shear. */
    int pixels() {
        int farthest = Math.min(FARTHEST, mWidth / 4);
        double unmoved = difference(0, farthest, Double.MAX_VALUE);
        if (unmoved <= LEAST_DIFFERENCE) {
            return 0;
        }
        int best = 0;
        double least = unmoved / RATIO;
        for (int move = -farthest; move <= farthest; ++move) {
            double difference = difference(move, farthest, least);
            if (difference < least) {
                least = difference;
                best = move;
            }
        }
        return Math.abs(best) >= LEAST ? best : 0;
    }

    // Returns the mean difference of all pairs at this shift. If it exceeds `most`, stops early and returns
    // any number above `most`.
    private double difference(int move, int margin, double most) {
        int start = margin + SMOOTHED;
        int columns = Math.max(0, (mWidth - margin - start + mColumnStep - 1) / mColumnStep);
        int count = columns * (mRows.size() / 2);
        double enough = most * count;
        double sum = 0;
        for (int pair = 0; pair + 1 < mRows.size() && sum <= enough; pair += 2) {
            float[] upper = mRows.get(pair);
            float[] lower = mRows.get(pair + 1);
            for (int x = start; x < mWidth - margin; x += mColumnStep) {
                float difference = upper[x] - lower[x + move];
                sum += difference < 0 ? -difference : difference;
            }
        }
        return count == 0 ? 0 : sum / count;
    }
}
