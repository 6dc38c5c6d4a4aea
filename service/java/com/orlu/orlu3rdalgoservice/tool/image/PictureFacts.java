package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;

import java.awt.image.BufferedImage;
import java.util.Map;

/** Measurements of one picture: brightness, colours by region, alignment of rows. */
public final class PictureFacts {
    private static final int GRID = 16;
    private static final int LEVELS = 256;
    private static final int WHITE = 255;

    private final int mWidth;
    private final int mHeight;
    private final int[][] mHistograms = new int[4][LEVELS];
    /** Means of (blue - luma) and (red - luma) in a grid over the picture. */
    private final double[][] mBlue = new double[GRID][GRID];
    private final double[][] mRed = new double[GRID][GRID];
    private BufferedImage mShown;
    private final int mShear;
    private int mClipped;

    /** Measures a picture in one pass over its rows. */
    public PictureFacts(PixelRows picture) {
        mWidth = picture.width();
        mHeight = picture.height();
        ShownImage shown = new ShownImage(mWidth, mHeight);
        Shear shear = new Shear(mWidth, mHeight);
        int[][] counts = new int[GRID][GRID];
        float[] row = new float[mWidth * PixelRows.CHANNELS];
        float[] luma = new float[mWidth];
        for (int y = 0; y < mHeight; ++y) {
            picture.read(y, row);
            addRow(y * GRID / mHeight, row, luma, counts);
            shown.add(y, row);
            shear.add(y, luma);
        }
        mShown = shown.image();
        mShear = shear.pixels();
        divide(mBlue, counts);
        divide(mRed, counts);
    }

    // Measures rounded samples, as a page shows them.
    private void addRow(int gridY, float[] row, float[] luma, int[][] counts) {
        int[] lumas = mHistograms[0];
        int[] reds = mHistograms[1];
        int[] greens = mHistograms[2];
        int[] blues = mHistograms[3];
        for (int gridX = 0, x = 0; gridX < GRID; ++gridX) {
            // The first column of the next cell.
            int end = (int) (((long) (gridX + 1) * mWidth + GRID - 1) / GRID);
            double blueSum = 0;
            double redSum = 0;
            int clipped = 0;
            counts[gridY][gridX] += end - x;
            for (int at = x * PixelRows.CHANNELS; x < end; ++x, at += PixelRows.CHANNELS) {
                int red = PixelRows.round(row[at]);
                int green = PixelRows.round(row[at + 1]);
                int blue = PixelRows.round(row[at + 2]);
                float brightness = 0.299f * red + 0.587f * green + 0.114f * blue;
                luma[x] = brightness;
                ++lumas[PixelRows.round(brightness)];
                ++reds[red];
                ++greens[green];
                ++blues[blue];
                clipped += red >= WHITE - 1 && green >= WHITE - 1 && blue >= WHITE - 1 ? 1 : 0;
                blueSum += blue - brightness;
                redSum += red - brightness;
            }
            mClipped += clipped;
            mBlue[gridY][gridX] += blueSum;
            mRed[gridY][gridX] += redSum;
        }
    }

    /**
     * Returns the picture as a page shows it; null after the first call. Keeps no reference, so that the
     * picture's memory is freed after drawing.
     */
    public BufferedImage takeShown() {
        BufferedImage shown = mShown;
        mShown = null;
        return shown;
    }

    private static void divide(double[][] sums, int[][] counts) {
        for (int y = 0; y < GRID; ++y) {
            for (int x = 0; x < GRID; ++x) {
                sums[y][x] /= Math.max(1, counts[y][x]);
            }
        }
    }

    private int pixels() {
        return mWidth * mHeight;
    }

    /** Mean brightness, 0 to 255. */
    public double meanLuma() {
        double sum = 0;
        for (int level = 0; level < LEVELS; ++level) {
            sum += (double) level * mHistograms[0][level];
        }
        return sum / pixels();
    }

    /** The lowest luma such that at least the fraction `part` (0 to 1) of the pixels is at or below it. */
    public int lumaAt(double part) {
        long left = Math.round(part * pixels());
        int level = 0;
        while (level < WHITE && left > mHistograms[0][level]) {
            left -= mHistograms[0][level];
            ++level;
        }
        return level;
    }

    /** The fraction of the pixels that are white (254 or 255 in all channels), 0 to 1. */
    public double clipped() {
        return (double) mClipped / pixels();
    }

    /** The distance between two pictures' mean colours, averaged over the cells of the grid. */
    public double colourDistance(PictureFacts other) {
        return distance(mBlue, other.mBlue) + distance(mRed, other.mRed);
    }

    /** Like colourDistance(), with blue and red exchanged in the other picture. */
    public double exchangedDistance(PictureFacts other) {
        return distance(mBlue, other.mRed) + distance(mRed, other.mBlue);
    }

    private static double distance(double[][] one, double[][] other) {
        double sum = 0;
        for (int y = 0; y < GRID; ++y) {
            for (int x = 0; x < GRID; ++x) {
                sum += Math.abs(one[y][x] - other[y][x]);
            }
        }
        return sum / (GRID * GRID);
    }

    /** The shift of each row against the row above, in pixels, positive to the right; 0 if not sheared. */
    public int shear() {
        return mShear;
    }

    /** Size, mean luma, clipped fraction, and histograms of luma, red, green and blue. */
    public Map<String, Object> json() {
        return JsonWriter.object("width", mWidth, "height", mHeight,
                "mean", Math.round(10 * meanLuma()) / 10.0, "clipped", Math.round(1000 * clipped()) / 1000.0,
                "histogram", JsonWriter.object("luma", mHistograms[0], "red", mHistograms[1],
                        "green", mHistograms[2], "blue", mHistograms[3]));
    }
}
