package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.image.Demosaic;
import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.MemoryUse;
import com.orlu.orlu3rdalgoservice.tool.image.OutputReader;
import com.orlu.orlu3rdalgoservice.tool.image.Picture;
import com.orlu.orlu3rdalgoservice.tool.image.PictureData;
import com.orlu.orlu3rdalgoservice.tool.image.PictureFacts;

import java.awt.image.BufferedImage;
import java.nio.ByteBuffer;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.zip.CRC32;

/** One image of a request after it, as a page shows it. */
public final class ImageExhibit {
    private static final int SMALL_WIDTH = 240;

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
    private Picture mPicture;
    private PictureFacts mFacts;
    private PictureData mLarge;
    private PictureData mSmall;

    /** The name is "input 0" and the like; the frame is -1 for an output. */
    ImageExhibit(String name, int frame, ImageBuffer image, OutputReader read) {
        mName = name;
        mFrame = frame;
        mIsRaw = read.mosaic() != null;
        mProblem = read.problem();
        mIsHardware = image.plan().hardware();
        mIsOfFile = !image.plan().isOfPhoto();
        mMemory = new MemoryUse(image.descriptor(), image.plan().format(), image.bytes());
        mMemoryJson = mMemory.json(image.descriptor());
        mChecksum = checksum(image);
        mPicture = mIsRaw ? Demosaic.of(read.mosaic()) : read.picture();
        if (mPicture != null) {
            BufferedImage shown = mPicture.toImage();
            mFacts = new PictureFacts(shown);
            mLarge = read.jpeg() == null ? PictureData.of(shown) : PictureData.of(read.jpeg(), shown);
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

    /** Why there is no picture, "" when there is one. */
    public String problem() {
        return mProblem.isEmpty() && mFacts == null ? "a JPEG that no decoder takes" : mProblem;
    }

    MemoryUse memory() {
        return mMemory;
    }

    /** Null when there is no picture. */
    PictureFacts facts() {
        return mFacts;
    }

    /** The picture's pixels, until they are let go; null when there are none. */
    Picture picture() {
        return mPicture;
    }

    void letPixelsGo() {
        mPicture = null;
    }

    long checksum() {
        return mChecksum;
    }

    /** Whether its pixels come from a file; frames made of one photo may well be alike. */
    boolean isOfFile() {
        return mIsOfFile;
    }

    /** Notes that the bytes are others than before the request. */
    void markWritten() {
        mIsWritten = true;
    }

    /** Whether they are, of an input. */
    boolean isWritten() {
        return mIsWritten;
    }

    /** Null when there is no picture. */
    PictureData large() {
        return mLarge;
    }

    /** Null when there is no picture. */
    public PictureData small() {
        return mSmall;
    }

    /** All but the pictures. */
    Map<String, Object> json() {
        Map<String, Object> json = new LinkedHashMap<>();
        json.put("name", mName);
        json.put("frame", mFrame);
        json.put("raw", mIsRaw);
        json.put("hardware", mIsHardware);
        json.put("problem", problem());
        json.put("written", mIsWritten);
        json.put("layout", mMemoryJson);
        if (mFacts != null) {
            json.put("facts", mFacts.json());
            json.put("small", mSmall.uri());
        }
        return json;
    }
}
