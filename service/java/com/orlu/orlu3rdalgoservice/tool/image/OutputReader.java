package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

/** Reads an image after a request. The native side may have set the format and sizes in its descriptor. */
public final class OutputReader {
    /** A limit of the width, so that a row's bytes fit an int. */
    private static final int LARGEST_SIDE = 1 << 28;

    private final ImageBuffer mImage;
    private byte[] mJpeg;
    private Mosaic mMosaic;
    private PixelRows mPicture;
    private final boolean mUntouched;
    private String mProblem = "";

    private OutputReader(ImageBuffer image) {
        mImage = image;
        mUntouched = isAllZero();
        if (!mUntouched) {
            read();
        }
    }

    public static OutputReader of(ImageBuffer image) {
        return new OutputReader(image);
    }

    /** Whether all bytes are still zero. */
    public boolean isUntouched() {
        return mUntouched;
    }

    private boolean isAllZero() {
        return !PlaneUse.hasData(mImage.bytes(), 0, mImage.bytes().capacity());
    }

    /** The encoded bytes of a readable JPEG, else null. */
    public byte[] jpeg() {
        return mJpeg;
    }

    /** The samples of a readable raw image, else null. */
    public Mosaic mosaic() {
        return mMosaic;
    }

    /**
     * The picture of an RGBA, YUV or JPEG image; null for a raw image, and if the picture can't be read. An
     * RGBA or YUV picture reads the image's memory, so it is valid only as long as that memory.
     */
    public PixelRows picture() {
        if (mPicture == null && mJpeg != null) {
            mPicture = PixelReader.decodeJpeg(mJpeg);
        }
        return mPicture;
    }

    /** Why the content could not be read, as a text to follow "is"; empty if it was read. */
    public String problem() {
        boolean isEmptyJpeg = mImage.descriptor().mFormat.equals(PixelFormat.JPEG.name())
                && firstPlaneSize() == 0;
        if (mUntouched) {
            return "untouched (all its bytes are 0)" + (isEmptyJpeg ? " and of size 0" : "");
        }
        return mProblem;
    }

    private void read() {
        VImageIPC image = mImage.descriptor();
        PixelFormat format = PixelFormat.named(image.mFormat);
        if (format == null) {
            // A custom format name: the memory has the layout of the plan's format.
            format = mImage.plan().format();
        }
        if (format == PixelFormat.JPEG) {
            readJpeg(firstPlaneSize());
            return;
        }
        mProblem = problemOf(format, image);
        if (!mProblem.isEmpty()) {
            return;
        }
        ImagePlan old = mImage.plan();
        ImagePlan plan = new ImagePlan(format, image.mFormat, old.hardware(), image.mWidth, image.mHeight,
                image.mRowStrides[0], 0, old.bits(), 0, old.file(), old.place());
        if (!PixelReader.fits(plan, mImage.bytes().capacity())) {
            mProblem = "described as larger than its memory";
        } else if (format.isRaw()) {
            mMosaic = PixelReader.readMosaic(plan, mImage.bytes());
        } else {
            mPicture = PixelReader.picture(plan, mImage.bytes());
        }
    }

    private int firstPlaneSize() {
        int[] sizes = mImage.descriptor().mPlaneSizes;
        return sizes == null || sizes.length == 0 ? 0 : sizes[0];
    }

    /** Why this description is invalid, regardless of the memory's size; empty if it is valid. */
    static String problemOf(PixelFormat format, VImageIPC image) {
        if (image.mWidth < 1 || image.mHeight < 1 || image.mWidth > LARGEST_SIDE) {
            return "described with an invalid size: " + image.mWidth + "x" + image.mHeight;
        }
        if (image.mRowStrides == null || image.mRowStrides.length == 0) {
            return "described without a row stride";
        }
        int row = format.tightStride(image.mWidth);
        return image.mRowStrides[0] >= row ? "" : "described with rows of " + image.mRowStrides[0]
                + " bytes; " + image.mWidth + " pixels need " + row;
    }

    private void readJpeg(int size) {
        if (size < 1 || size > mImage.bytes().capacity()) {
            mProblem = "a JPEG of size " + size;
            return;
        }
        mJpeg = new byte[size];
        mImage.bytes().get(0, mJpeg);
    }
}
