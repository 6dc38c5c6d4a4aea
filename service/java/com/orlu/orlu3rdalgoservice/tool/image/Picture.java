package com.orlu.orlu3rdalgoservice.tool.image;

import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;
import java.awt.image.IndexColorModel;
import java.awt.image.Raster;
import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Random;

import javax.imageio.ImageIO;

/**
 * A colour picture of red, green and blue from 0 to 255, with fractions so that noise and blur lose nothing.
 */
public final class Picture {
    static final int CHANNELS = 3;
    static final float WHITE = 255;

    private final int mWidth;
    private final int mHeight;
    private final float[] mSamples;

    Picture(int width, int height) {
        mWidth = width;
        mHeight = height;
        mSamples = new float[width * height * CHANNELS];
    }

    static Picture of(BufferedImage image) {
        Picture picture = new Picture(image.getWidth(), image.getHeight());
        Raster raster = image.getRaster();
        if (raster.getNumBands() == 1 && !(image.getColorModel() instanceof IndexColorModel)) {
            picture.fillGray(raster, image.getColorModel().getComponentSize(0));
            return picture;
        }
        for (int y = 0; y < picture.mHeight; ++y) {
            for (int x = 0; x < picture.mWidth; ++x) {
                int rgb = image.getRGB(x, y);
                picture.set(x, y, rgb >> 16 & 255, rgb >> 8 & 255, rgb & 255);
            }
        }
        return picture;
    }

    // The platform takes gray for linear, and would brighten it.
    private void fillGray(Raster raster, int bits) {
        float scale = WHITE / ((1 << bits) - 1);
        for (int y = 0; y < mHeight; ++y) {
            for (int x = 0; x < mWidth; ++x) {
                float gray = raster.getSample(x, y, 0) * scale;
                set(x, y, gray, gray, gray);
            }
        }
    }

    public int width() {
        return mWidth;
    }

    public int height() {
        return mHeight;
    }

    /** A sample: channel 0 is red, 1 green, 2 blue. */
    float get(int x, int y, int channel) {
        return mSamples[(y * mWidth + x) * CHANNELS + channel];
    }

    void set(int x, int y, float red, float green, float blue) {
        int at = (y * mWidth + x) * CHANNELS;
        mSamples[at] = clip(red);
        mSamples[at + 1] = clip(green);
        mSamples[at + 2] = clip(blue);
    }

    private static float clip(float value) {
        return Math.max(0, Math.min(WHITE, value));
    }

    /** Brightness by the weights that JPEG uses, 0 to 255. */
    float luma(int x, int y) {
        return 0.299f * get(x, y, 0) + 0.587f * get(x, y, 1) + 0.114f * get(x, y, 2);
    }

    Picture crop(int left, int top, int width, int height) {
        Picture cropped = new Picture(width, height);
        for (int y = 0; y < height; ++y) {
            System.arraycopy(mSamples, ((top + y) * mWidth + left) * CHANNELS, cropped.mSamples,
                    y * width * CHANNELS, width * CHANNELS);
        }
        return cropped;
    }

    Picture scaledTo(int width, int height) {
        BufferedImage scaled = new BufferedImage(width, height, BufferedImage.TYPE_INT_RGB);
        Graphics2D graphics = scaled.createGraphics();
        graphics.setRenderingHint(
                RenderingHints.KEY_INTERPOLATION, RenderingHints.VALUE_INTERPOLATION_BICUBIC);
        graphics.drawImage(toImage(), 0, 0, width, height, null);
        graphics.dispose();
        return of(scaled);
    }

    public BufferedImage toImage() {
        BufferedImage image = new BufferedImage(mWidth, mHeight, BufferedImage.TYPE_INT_RGB);
        for (int y = 0; y < mHeight; ++y) {
            for (int x = 0; x < mWidth; ++x) {
                image.setRGB(x, y, byteAt(x, y, 0) << 16 | byteAt(x, y, 1) << 8 | byteAt(x, y, 2));
            }
        }
        return image;
    }

    /** Writes a PNG file. */
    public void writePng(Path file) throws IOException {
        ByteArrayOutputStream png = new ByteArrayOutputStream();
        ImageIO.write(toImage(), "png", png);
        // Given the file, ImageIO would print a stack when that can't be written.
        Files.write(file, png.toByteArray());
    }

    /** A sample rounded to a byte's range. */
    int byteAt(int x, int y, int channel) {
        return Math.round(get(x, y, channel));
    }

    Picture brightened(double gain) {
        Picture result = new Picture(mWidth, mHeight);
        for (int i = 0; i < mSamples.length; ++i) {
            result.mSamples[i] = clip((float) (mSamples[i] * gain));
        }
        return result;
    }

    /** With Gaussian noise of this standard deviation on every sample. */
    Picture withNoise(double deviation, Random random) {
        Picture result = new Picture(mWidth, mHeight);
        for (int i = 0; i < mSamples.length; ++i) {
            result.mSamples[i] = clip((float) (mSamples[i] + deviation * random.nextGaussian()));
        }
        return result;
    }

    /** Blurred by a Gaussian of this standard deviation in pixels; the edges' pixels go on outside. */
    Picture blurred(double deviation) {
        float[] kernel = gaussian(deviation);
        return convolved(kernel, 1, 0).convolved(kernel, 0, 1);
    }

    // StrictMath returns the same on every machine.
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
