package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;

import java.nio.ByteBuffer;
import java.util.Map;

/** The place of one plane in an image's memory, and statistics of its nonzero bytes. */
public final class PlaneUse {
    private static final int MOST_BANDS = 48;
    private static final int PERCENT = 100;
    private static final ByteBuffer ZEROS = ByteBuffer.allocateDirect(1 << 16);

    private final String mName;
    private final long mOffset;
    private final int mSize;
    private final int mStride;
    private final int mRowBytes;
    private final int mRows;
    private final int[] mPixels;
    private final int[] mPadding;
    private int mUsedRows;
    private int mUsedPadding;
    private int mEmptyTail;

    /**
     * Sizes are in bytes. Bytes outside the memory count as zero. Padding: a row's bytes after its pixels.
     */
    PlaneUse(String name, long offset, int size, int stride, int rowBytes, ByteBuffer memory) {
        mName = name;
        mOffset = offset;
        mSize = size;
        mStride = Math.max(1, stride);
        mRowBytes = Math.max(1, Math.min(rowBytes, mStride));
        mRows = Math.max(1, size / mStride);
        int bands = Math.min(MOST_BANDS, mRows);
        mPixels = new int[bands];
        mPadding = new int[bands];
        int[] rowsOf = new int[bands];
        // Skips rows outside the memory: an invalid description may claim billions of rows.
        long reached = (memory.capacity() - offset + mStride - 1) / mStride;
        int rows = (int) Math.max(0, Math.min(mRows, reached));
        for (int row = 0; row < rows; ++row) {
            int band = (int) ((long) row * bands / mRows);
            int at = (int) (offset + (long) row * mStride);
            boolean hasPixels = hasData(memory, at, mRowBytes);
            boolean hasPadding = hasData(memory, at + mRowBytes, mStride - mRowBytes);
            mPixels[band] += hasPixels ? 1 : 0;
            mPadding[band] += hasPadding ? 1 : 0;
            mUsedRows += hasPixels ? 1 : 0;
            mUsedPadding += hasPadding ? 1 : 0;
            mEmptyTail = hasPixels ? 0 : mEmptyTail + 1;
            ++rowsOf[band];
        }
        mEmptyTail += mRows - rows;
        for (int band = 0; band < bands; ++band) {
            mPixels[band] = mPixels[band] * PERCENT / Math.max(1, rowsOf[band]);
            mPadding[band] = mPadding[band] * PERCENT / Math.max(1, rowsOf[band]);
        }
    }

    /** Whether any of these bytes is not zero. Ignores bytes outside the memory. */
    static boolean hasData(ByteBuffer memory, int from, int size) {
        int end = (int) Math.min(memory.capacity(), (long) from + size);
        for (int at = Math.max(0, from); at < end; at += ZEROS.capacity()) {
            int count = Math.min(ZEROS.capacity(), end - at);
            if (memory.get(at) != 0 || memory.slice(at, count).mismatch(ZEROS.slice(0, count)) >= 0) {
                return true;
            }
        }
        return false;
    }

    public String name() {
        return mName;
    }

    long end() {
        return mOffset + mSize;
    }

    public int stride() {
        return mStride;
    }

    public int rowBytes() {
        return mRowBytes;
    }

    public int rows() {
        return mRows;
    }

    /** The number of rows with a nonzero pixel byte. */
    public int usedRows() {
        return mUsedRows;
    }

    /** The number of rows with a nonzero padding byte. */
    public int usedPadding() {
        return mUsedPadding;
    }

    /** The number of rows at the end of the plane whose pixels are all zero. */
    public int emptyTail() {
        return mEmptyTail;
    }

    Map<String, Object> json() {
        return JsonWriter.object("name", mName, "offset", mOffset, "size", mSize, "stride", mStride,
                "rowBytes", mRowBytes, "rows", mRows, "usedRows", mUsedRows, "usedPadding", mUsedPadding,
                "pixels", mPixels, "padding", mPadding);
    }

}
