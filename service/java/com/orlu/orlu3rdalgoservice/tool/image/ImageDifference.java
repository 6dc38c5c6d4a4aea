package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.Arrays;

/** What is different between two images of one description. */
public final class ImageDifference {
    /** Differences are small where anybody looks at them, so that the picture shows them larger. */
    public static final int AMPLIFICATION = 8;
    private static final int GREY = 128;

    private final Picture mOne;
    private final Picture mOther;
    private final double mPsnr;
    private int mFirstRow = -1;
    private int mMost;

    private ImageDifference(Picture one, Picture other, double psnr) {
        mOne = one;
        mOther = other;
        mPsnr = psnr;
        for (int y = 0; y < one.height(); ++y) {
            for (int x = 0; x < one.width(); ++x) {
                int difference = differenceAt(x, y);
                mFirstRow = mFirstRow < 0 && difference > 0 ? y : mFirstRow;
                mMost = Math.max(mMost, difference);
            }
        }
    }

    /**
     * Compares the pixels; null when they can't be read by this description, or are of different sizes. The
     * stride is in bytes. A JPEG's bytes are those of the file alone.
     */
    public static ImageDifference of(
            String formatName, int width, int height, int stride, byte[] one, byte[] other) {
        PixelFormat format = PixelFormat.named(formatName);
        if (format == null) {
            return null;
        }
        if (format == PixelFormat.JPEG) {
            return of(PixelReader.decodeJpeg(one), PixelReader.decodeJpeg(other));
        }
        ImagePlan plan = plan(format, width, height, stride, 0);
        if (stride < format.tightStride(width)
                || !PixelReader.fits(plan, Math.min(one.length, other.length))) {
            return null;
        }
        if (!format.isRaw()) {
            return of(
                    PixelReader.readPicture(plan, buffer(one)), PixelReader.readPicture(plan, buffer(other)));
        }
        Mosaic left = mosaic(format, width, height, stride, one);
        Mosaic right = mosaic(format, width, height, stride, other);
        int bits = bitsOf(left, right);
        left = new Mosaic(width, height, bits, left.samples());
        right = new Mosaic(width, height, bits, right.samples());
        return new ImageDifference(grey(left), grey(right), Psnr.ofMosaic(left, right));
    }

    /** Compares two pictures; null when one is, or when they are of different sizes. */
    public static ImageDifference of(Picture one, Picture other) {
        boolean isSame = one != null && other != null && one.width() == other.width()
                && one.height() == other.height();
        return isSame ? new ImageDifference(one, other, Psnr.ofLuma(one, other)) : null;
    }

    private static ImagePlan plan(PixelFormat format, int width, int height, int stride, int bits) {
        return new ImagePlan(
                format, format.name(), false, width, height, stride, 0, bits, 0, null, null);
    }

    private static ByteBuffer buffer(byte[] bytes) {
        return ByteBuffer.wrap(bytes).order(ByteOrder.LITTLE_ENDIAN);
    }

    private static Mosaic mosaic(PixelFormat format, int width, int height, int stride, byte[] bytes) {
        int bits = format == PixelFormat.MIPI_RAW10 ? 10 : 16;
        return PixelReader.readMosaic(plan(format, width, height, stride, bits), buffer(bytes));
    }

    // A description doesn't say how many bits a sample has: the fewest that both images fit.
    private static int bitsOf(Mosaic one, Mosaic other) {
        int most = Math.max(Arrays.stream(one.samples()).max().orElse(0),
                Arrays.stream(other.samples()).max().orElse(0));
        return Math.max(8, Integer.SIZE - Integer.numberOfLeadingZeros(most));
    }

    private static Picture grey(Mosaic mosaic) {
        Picture picture = new Picture(mosaic.width(), mosaic.height());
        float scale = Picture.WHITE / mosaic.white();
        for (int y = 0; y < mosaic.height(); ++y) {
            for (int x = 0; x < mosaic.width(); ++x) {
                float sample = mosaic.samples()[y * mosaic.width() + x] * scale;
                picture.set(x, y, sample, sample, sample);
            }
        }
        return picture;
    }

    private int differenceAt(int x, int y) {
        float most = 0;
        for (int channel = 0; channel < Picture.CHANNELS; ++channel) {
            most = Math.max(most, Math.abs(mOne.get(x, y, channel) - mOther.get(x, y, channel)));
        }
        return (int) Math.ceil(most);
    }

    /**
     * The first row that differs, from 0; -1 when all pixels are equal, and only bytes beside them differ.
     */
    public int firstRow() {
        return mFirstRow;
    }

    /** The largest difference of a sample, of 255, rounded up. */
    public int most() {
        return mMost;
    }

    /** In dB. Infinite when all pixels are equal. */
    public double psnr() {
        return mPsnr;
    }

    public Picture one() {
        return mOne;
    }

    public Picture other() {
        return mOther;
    }

    /**
     * The difference, larger by AMPLIFICATION: grey where the images are equal, lighter where the other is.
     */
    public Picture picture() {
        Picture picture = new Picture(mOne.width(), mOne.height());
        for (int y = 0; y < mOne.height(); ++y) {
            for (int x = 0; x < mOne.width(); ++x) {
                picture.set(x, y, shown(x, y, 0), shown(x, y, 1), shown(x, y, 2));
            }
        }
        return picture;
    }

    private float shown(int x, int y, int channel) {
        return GREY + AMPLIFICATION * (mOther.get(x, y, channel) - mOne.get(x, y, channel));
    }
}
