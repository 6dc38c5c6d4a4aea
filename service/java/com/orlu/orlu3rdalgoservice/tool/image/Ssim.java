package com.orlu.orlu3rdalgoservice.tool.image;

import java.util.stream.IntStream;

/**
 * Structural similarity (1 if equal) of the lumas of two pictures: the mean over windows of 8x8 pixels, 4
 * pixels apart. Computed here because Debian has no Java package for it.
 */
public final class Ssim {
    private static final int BLOCK = 4;
    /** Rows of windows that one task computes. */
    private static final int BAND = 32;
    /** Number of pixels in a window of four blocks. */
    private static final double COUNT = 64;
    private static final double C1 = Math.pow(0.01 * PixelRows.WHITE, 2);
    private static final double C2 = Math.pow(0.03 * PixelRows.WHITE, 2);
    /** Number of sums over a block's pixels: of both lumas, their squares and their product. */
    private static final int SUMS = 5;

    private Ssim() {
    }

    /** Returns the similarity; NaN if the sizes differ or the pictures are smaller than a window. */
    public static double of(PixelRows one, PixelRows other) {
        int columns = one.width() / BLOCK;
        int rows = one.height() / BLOCK;
        if (one.width() != other.width() || one.height() != other.height() || columns < 2 || rows < 2) {
            return Double.NaN;
        }
        double[][] windows = new double[rows - 1][columns - 1];
        int bands = (rows - 2) / BAND + 1;
        IntStream.range(0, bands).parallel().forEach(band -> addBand(one, other, band * BAND, windows));
        // Adds up in a fixed order, because a floating-point sum depends on the order.
        double total = 0;
        for (double[] row : windows) {
            for (double window : row) {
                total += window;
            }
        }
        return total / ((double) (rows - 1) * (columns - 1));
    }

    // Fills a band of `windows`, from row `first` on.
    private static void addBand(PixelRows one, PixelRows other, int first, double[][] windows) {
        int columns = windows[0].length + 1;
        double[][] above = sums(one, other, first, columns);
        for (int row = first; row < Math.min(first + BAND, windows.length); ++row) {
            double[][] here = sums(one, other, row + 1, columns);
            for (int column = 1; column < columns; ++column) {
                windows[row][column - 1] =
                        window(above[column - 1], above[column], here[column - 1], here[column]);
            }
            above = here;
        }
    }

    private static double[][] sums(PixelRows one, PixelRows other, int row, int columns) {
        double[][] sums = new double[columns][SUMS];
        float[] left = new float[one.width() * PixelRows.CHANNELS];
        float[] right = new float[left.length];
        for (int y = row * BLOCK; y < (row + 1) * BLOCK; ++y) {
            one.read(y, left);
            other.read(y, right);
            for (int x = 0; x < columns * BLOCK; ++x) {
                double a = PixelRows.luma(left, x * PixelRows.CHANNELS);
                double b = PixelRows.luma(right, x * PixelRows.CHANNELS);
                double[] sum = sums[x / BLOCK];
                sum[0] += a;
                sum[1] += b;
                sum[2] += a * a;
                sum[3] += b * b;
                sum[4] += a * b;
            }
        }
        return sums;
    }

    private static double window(double[]... blocks) {
        double[] sum = new double[SUMS];
        for (double[] block : blocks) {
            for (int i = 0; i < SUMS; ++i) {
                sum[i] += block[i] / COUNT;
            }
        }
        double variance = sum[2] - sum[0] * sum[0] + sum[3] - sum[1] * sum[1];
        double covariance = sum[4] - sum[0] * sum[1];
        return (2 * sum[0] * sum[1] + C1) * (2 * covariance + C2)
                / ((sum[0] * sum[0] + sum[1] * sum[1] + C1) * (variance + C2));
    }
}
