package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.image.Demosaic;
import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.MemoryUse;
import com.orlu.orlu3rdalgoservice.tool.image.OutputReader;
import com.orlu.orlu3rdalgoservice.tool.image.PictureData;
import com.orlu.orlu3rdalgoservice.tool.image.PictureFacts;
import com.orlu.orlu3rdalgoservice.tool.image.PixelRows;

import java.awt.image.BufferedImage;
import java.nio.ByteBuffer;
import java.util.Map;
import java.util.zip.CRC32;

/** One image after the request, as a page shows it. */
public final class ImageExhibit {
    private static final int SMALL_WIDTH = 240;
    /** Smallest useful limit, in bytes: a large picture below it would show no more than the small one. */
    private static final int LEAST_LARGE = 30_000;

    private final String mName;
    private final int mFrame;
    private final boolean mIsRaw;
    private final String mProblem;
    private final MemoryUse mMemory;
    private final Map<String, Object> mMemoryJson;
    private final boolean mIsHardware;
    private final boolean mIsOfFile;
    private boolean mIsWritten;
    private long mChecksum;
    private PixelRows mPicture;
    private PictureFacts mFacts;
    private PictureData mLarge;
    private PictureData mSmall;

    /** Draws the image. `frame` is -1 for an output; `most` limits the bytes of the large picture. */
    ImageExhibit(String name, int frame, ImageBuffer image, OutputReader read, int most) {
        mName = name;
        mFrame = frame;
        mIsRaw = read.mosaic() != null;
        mProblem = read.problem();
        mIsHardware = image.plan().hardware();
        mIsOfFile = !image.plan().isOfPhoto();
        mMemory = new MemoryUse(image.descriptor(), image.plan().format(), image.bytes());
        mMemoryJson = mMemory.json(image.descriptor());
        mChecksum = checksum(image);
        mPicture = mIsRaw ? new Demosaic(read.mosaic()) : read.picture();
        if (mPicture != null) {
            mFacts = new PictureFacts(mPicture);
            BufferedImage shown = mFacts.takeShown();
            mLarge = read.jpeg() != null && most == PictureData.LARGEST
                    ? PictureData.of(read.jpeg(), mPicture, shown)
                    : most < LEAST_LARGE ? null : PictureData.of(shown, most);
            mSmall = PictureData.small(shown, SMALL_WIDTH);
        }
    }

    static long checksum(ImageBuffer image) {
        CRC32 checksum = new CRC32();
        ByteBuffer bytes = image.bytes().duplicate();
        bytes.rewind();
        checksum.update(bytes);
        return checksum.getValue();
    }

    String name() {
        return mName;
    }

    int frame() {
        return mFrame;
    }

    /** Returns why there is no picture; "" if there is one. */
    public String problem() {
        return mProblem.isEmpty() && mFacts == null ? "a JPEG that no decoder accepts" : mProblem;
    }

    MemoryUse memory() {
        return mMemory;
    }

    /** Returns the picture's facts; null without a picture. */
    PictureFacts facts() {
        return mFacts;
    }

    /** Returns the picture's pixels; null without a picture, or after letPixelsGo(). */
    PixelRows picture() {
        return mPicture;
    }

    void letPixelsGo() {
        mPicture = null;
    }

    long checksum() {
        return mChecksum;
    }

    /** Whether the pixels come from a file. If not, they are made from the photo, and frames may be equal. */
    boolean isOfFile() {
        return mIsOfFile;
    }

    void markWritten() {
        mIsWritten = true;
    }

    /** Returns whether the request changed this input's bytes. */
    boolean isWritten() {
        return mIsWritten;
    }

    /** Returns the small picture; null without a picture. */
    public PictureData small() {
        return mSmall;
    }

    Map<String, Object> json() {
        Map<String, Object> json = JsonWriter.object("name", mName, "frame", mFrame, "raw", mIsRaw,
                "hardware", mIsHardware, "problem", problem(), "written", mIsWritten, "layout", mMemoryJson);
        if (mFacts != null) {
            json.put("facts", mFacts.json());
            json.put("small", mSmall.uri());
        }
        if (mLarge != null) {
            json.put("large", mLarge.uri());
            json.put("largeWidth", mLarge.width());
        }
        return json;
    }
}
