package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.Arrays;
import java.util.stream.IntStream;

/** The difference between two images of the same size. */
public final class ImageDifference {
    /** picture() multiplies differences by this factor: most are too small to see. */
    public static final int AMPLIFICATION = 8;
    private static final int GREY = 128;

    private final PixelRows mOne;
    private final PixelRows mOther;
    private final double mPsnr;
    private int mFirstRow = -1;
    private int mMost;

    // If `psnr` is null, it is computed from luma.
    private ImageDifference(PixelRows one, PixelRows other, Double psnr) {
        mOne = one;
        mOther = other;
        Row[] rows = new Row[PixelRows.BAND];
        Arrays.setAll(rows, i -> new Row(one.width()));
        double squares = 0;
        for (int top = 0; top < one.height(); top += rows.length) {
            int start = top;
            int end = Math.min(start + rows.length, one.height());
            IntStream.range(start, end).parallel().forEach(y -> rows[y - start].compare(one, other, y));
            // Adds in the order of the rows, because the order changes a floating-point sum.
            for (int y = start; y < end; ++y) {
                Row row = rows[y - start];
                if (row.mMost > 0) {
                    mFirstRow = mFirstRow < 0 ? y : mFirstRow;
                    mMost = Math.max(mMost, (int) Math.ceil(row.mMost));
                    squares = row.addTo(squares);
                }
            }
        }
        mPsnr = psnr == null ? Psnr.ofLuma(squares, one) : psnr;
    }

    /** One row of both pictures. */
    private static final class Row {
        private final float[] mLeft;
        private final float[] mRight;
        private final double[] mSquares;
        private float mMost;

        Row(int width) {
            mLeft = new float[width * PixelRows.CHANNELS];
            mRight = new float[mLeft.length];
            mSquares = new double[width];
        }

        void compare(PixelRows one, PixelRows other, int y) {
            one.read(y, mLeft);
            other.read(y, mRight);
            mMost = 0;
            if (Arrays.equals(mLeft, mRight)) {
                return;
            }
            for (int i = 0; i < mLeft.length; ++i) {
                float difference = mLeft[i] - mRight[i];
                mMost = difference > mMost ? difference : -difference > mMost ? -difference : mMost;
            }
            for (int x = 0, at = 0; x < mSquares.length; ++x, at += PixelRows.CHANNELS) {
                double difference = (double) PixelRows.luma(mLeft, at) - PixelRows.luma(mRight, at);
                mSquares[x] = difference * difference;
            }
        }

        double addTo(double squares) {
            double sum = squares;
            for (double square : mSquares) {
                sum += square;
            }
            return sum;
        }
    }

    /**
     * Compares two images of this format, size and stride. Returns null if an image can't be read so, or if
     * two JPEG files have different sizes. `stride` is in bytes. For a JPEG, each array must end where the
     * JPEG file ends.
     */
    public static ImageDifference of(
            String formatName, int width, int height, int stride, byte[] one, byte[] other) {
        PixelRows left = pixels(formatName, width, height, stride, one);
        PixelRows right = pixels(formatName, width, height, stride, other);
        if (left instanceof Mosaic a && right instanceof Mosaic b) {
            int bits = Math.max(a.bits(), b.bits());
            Mosaic first = new Mosaic(width, height, bits, a.samples());
            Mosaic second = new Mosaic(width, height, bits, b.samples());
            return new ImageDifference(first, second, Psnr.ofMosaic(first, second));
        }
        return of(left, right);
    }

    /**
     * Returns the pixels of an image; null if they can't be read with this description. A raw image is a
     * Mosaic with the smallest bit depth that fits all samples, at least 8.
     */
    public static PixelRows pixels(String formatName, int width, int height, int stride, byte[] bytes) {
        PixelFormat format = PixelFormat.named(formatName);
        if (format == PixelFormat.JPEG) {
            return PixelReader.decodeJpeg(bytes);
        }
        if (format == null || stride < format.tightStride(width)) {
            return null;
        }
        int bits = !format.isRaw() ? 0 : format == PixelFormat.MIPI_RAW10 ? 10 : 16;
        ImagePlan plan = new ImagePlan(
                format, format.name(), false, width, height, stride, 0, bits, 0, null, null);
        if (!PixelReader.fits(plan, bytes.length)) {
            return null;
        }
        ByteBuffer buffer = ByteBuffer.wrap(bytes).order(ByteOrder.LITTLE_ENDIAN);
        if (!format.isRaw()) {
            return PixelReader.picture(plan, buffer);
        }
        int[] samples = PixelReader.readMosaic(plan, buffer).samples();
        int most = Arrays.stream(samples).max().orElse(0);
        return new Mosaic(
                width, height, Math.max(8, Integer.SIZE - Integer.numberOfLeadingZeros(most)), samples);
    }

    /**
     * Compares two pictures. Returns null if a picture is null or the sizes differ. ssim() and picture() of
     * the result read both pictures again.
     */
    public static ImageDifference of(PixelRows one, PixelRows other) {
        boolean isSame = one != null && other != null && one.width() == other.width()
                && one.height() == other.height();
        return isSame ? new ImageDifference(one, other, null) : null;
    }

    /** Index of the first row with different pixels; -1 if all pixels are equal. Ignores padding. */
    public int firstRow() {
        return mFirstRow;
    }

    /** The largest difference of a sample, on a scale of 255, rounded up. */
    public int most() {
        return mMost;
    }

    /** PSNR in dB; infinite if all pixels are equal. */
    public double psnr() {
        return mPsnr;
    }

    /** The structural similarity; 1 if all pixels are equal. */
    public double ssim() {
        return mFirstRow < 0 ? 1 : Ssim.of(mOne, mOther);
    }

    public PixelRows one() {
        return mOne;
    }

    public PixelRows other() {
        return mOther;
    }

    /** The amplified difference: grey where the images are equal, lighter where other() is lighter. */
    public PixelRows picture() {
        return new Amplified(mOne, mOther);
    }

    private record Amplified(PixelRows one, PixelRows other) implements PixelRows {
        @Override
        public int width() {
            return one.width();
        }

        @Override
        public int height() {
            return one.height();
        }

        @Override
        public void read(int y, float[] to) {
            float[] left = new float[to.length];
            one.read(y, left);
            other.read(y, to);
            for (int i = 0; i < to.length; ++i) {
                to[i] = PixelRows.clip(GREY + AMPLIFICATION * (to[i] - left[i]));
            }
        }
    }
}
