package com.orlu.orlu3rdalgoservice.tool.image;

import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;
import java.util.Random;

/** A colour picture with float samples from 0 to 255, so that noise and blur lose no precision. */
public final class Picture implements PixelRows {
    private final int mWidth;
    private final int mHeight;
    private final float[] mSamples;

    Picture(int width, int height) {
        mWidth = width;
        mHeight = height;
        mSamples = new float[width * height * CHANNELS];
    }

    /** Copies all rows into a new picture. */
    static Picture of(PixelRows rows) {
        Picture picture = new Picture(rows.width(), rows.height());
        float[] row = new float[rows.width() * CHANNELS];
        for (int y = 0; y < rows.height(); ++y) {
            rows.read(y, row);
            System.arraycopy(row, 0, picture.mSamples, y * row.length, row.length);
        }
        return picture;
    }

    @Override
    public int width() {
        return mWidth;
    }

    @Override
    public int height() {
        return mHeight;
    }

    /** A sample: channel 0 is red, 1 green, 2 blue. */
    float get(int x, int y, int channel) {
        return mSamples[(y * mWidth + x) * CHANNELS + channel];
    }

    @Override
    public void read(int y, float[] to) {
        System.arraycopy(mSamples, y * mWidth * CHANNELS, to, 0, mWidth * CHANNELS);
    }

    void set(int x, int y, float red, float green, float blue) {
        int at = (y * mWidth + x) * CHANNELS;
        mSamples[at] = PixelRows.clip(red);
        mSamples[at + 1] = PixelRows.clip(green);
        mSamples[at + 2] = PixelRows.clip(blue);
    }

    /** Luma by JPEG's weights, 0 to 255. */
    float luma(int x, int y) {
        return PixelRows.luma(mSamples, (y * mWidth + x) * CHANNELS);
    }

    /** Returns a part of the picture. For the whole picture, returns this object, to save memory. */
    Picture crop(int left, int top, int width, int height) {
        if (width == mWidth && height == mHeight) {
            return this;
        }
        Picture cropped = new Picture(width, height);
        for (int y = 0; y < height; ++y) {
            System.arraycopy(mSamples, ((top + y) * mWidth + left) * CHANNELS, cropped.mSamples,
                    y * width * CHANNELS, width * CHANNELS);
        }
        return cropped;
    }

    Picture scaledTo(int width, int height) {
        BufferedImage scaled = new BufferedImage(width, height, BufferedImage.TYPE_3BYTE_BGR);
        Graphics2D graphics = scaled.createGraphics();
        graphics.setRenderingHint(
                RenderingHints.KEY_INTERPOLATION, RenderingHints.VALUE_INTERPOLATION_BICUBIC);
        graphics.drawImage(toImage(), 0, 0, width, height, null);
        graphics.dispose();
        return of(new ImageRows(scaled));
    }

    /** A sample, rounded to an integer from 0 to 255. */
    int byteAt(int x, int y, int channel) {
        return PixelRows.round(get(x, y, channel));
    }

    Picture brightened(double gain) {
        Picture result = new Picture(mWidth, mHeight);
        for (int i = 0; i < mSamples.length; ++i) {
            result.mSamples[i] = PixelRows.clip((float) (mSamples[i] * gain));
        }
        return result;
    }

    /** Returns a copy with Gaussian noise of this standard deviation added to every sample. */
    Picture withNoise(double deviation, Random random) {
        Picture result = new Picture(mWidth, mHeight);
        for (int i = 0; i < mSamples.length; ++i) {
            result.mSamples[i] = PixelRows.clip((float) (mSamples[i] + deviation * random.nextGaussian()));
        }
        return result;
    }

    /**
     * Returns a copy with a Gaussian blur of this standard deviation, in pixels. Pixels outside the picture
     * count as copies of the nearest edge pixel.
     */
    Picture blurred(double deviation) {
        float[] kernel = gaussian(deviation);
        return convolved(kernel, 1, 0).convolved(kernel, 0, 1);
    }

    // Uses StrictMath, whose results are the same on every machine.
    private static float[] gaussian(double deviation) {
        int radius = (int) Math.ceil(3 * deviation);
        double[] weights = new double[2 * radius + 1];
        double sum = 0;
        for (int i = 0; i < weights.length; ++i) {
            double distance = (i - radius) / deviation;
            weights[i] = StrictMath.exp(-distance * distance / 2);
            sum += weights[i];
        }
        float[] kernel = new float[weights.length];
        for (int i = 0; i < kernel.length; ++i) {
            kernel[i] = (float) (weights[i] / sum);
        }
        return kernel;
    }

    private Picture convolved(float[] kernel, int stepX, int stepY) {
        Picture result = new Picture(mWidth, mHeight);
        int radius = kernel.length / 2;
        for (int y = 0; y < mHeight; ++y) {
            for (int x = 0; x < mWidth; ++x) {
                float[] sum = new float[CHANNELS];
                for (int k = -radius; k <= radius; ++k) {
                    int fromX = Math.max(0, Math.min(mWidth - 1, x + k * stepX));
                    int fromY = Math.max(0, Math.min(mHeight - 1, y + k * stepY));
                    for (int channel = 0; channel < CHANNELS; ++channel) {
                        sum[channel] += kernel[k + radius] * get(fromX, fromY, channel);
                    }
                }
                result.set(x, y, sum[0], sum[1], sum[2]);
            }
        }
        return result;
    }
}
