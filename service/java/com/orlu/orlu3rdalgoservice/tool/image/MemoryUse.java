package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.nio.ByteBuffer;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;

/** How an image's memory is used in each plane of the image's description, and after the planes. */
public final class MemoryUse {
    private final int mSize;
    private final List<PlaneUse> mPlanes = new ArrayList<>();
    private int mUsedBehind;
    private int mFirstBehind = -1;

    /** `usual` is the format if the description has a custom format name. */
    public MemoryUse(VImageIPC image, PixelFormat usual, ByteBuffer memory) {
        mSize = memory.capacity();
        PixelFormat named = PixelFormat.named(image.mFormat);
        PixelFormat format = named == null ? usual : named;
        // The sizes may be any numbers.
        long offset = 0;
        for (int i = 0; image.mPlaneSizes != null && i < image.mPlaneSizes.length; ++i) {
            int size = image.mPlaneSizes[i];
            boolean isFile = format == PixelFormat.JPEG;
            int[] strides = image.mRowStrides;
            int stride = isFile || strides == null || strides.length == 0 ? size
                    : strides[Math.min(i, strides.length - 1)];
            int row = isFile ? size : format.rowBytes(i, image.mWidth);
            mPlanes.add(new PlaneUse(name(format, i), offset, size, stride, row, memory));
            offset += Math.max(0, size);
        }
        for (int at = (int) Math.min(mSize, offset); at < mSize; ++at) {
            if (memory.get(at) != 0) {
                mFirstBehind = mFirstBehind < 0 ? at : mFirstBehind;
                ++mUsedBehind;
            }
        }
    }

    private static String name(PixelFormat format, int plane) {
        return switch (format) {
            case JPEG -> "JPEG file";
            case R8G8B8A8 -> "RGBA";
            case MIPI_RAW10, RAW16, RAW_SENSOR -> "raw samples";
            case NV21 -> plane == 0 ? "Y" : "VU";
            case NV12 -> plane == 0 ? "Y" : "UV";
            case YU12 -> plane == 0 ? "Y" : "U, V";
            case YV12 -> plane == 0 ? "Y" : "V, U";
        };
    }

    /** The size of the memory, in bytes. */
    int size() {
        return mSize;
    }

    public List<PlaneUse> planes() {
        return mPlanes;
    }

    /** Bytes by which the planes exceed the memory; 0 if they fit. */
    public long missing() {
        return Math.max(0, mPlanes.stream().mapToLong(PlaneUse::end).max().orElse(0) - mSize);
    }

    /** The number of nonzero bytes after the planes. */
    public int usedBehind() {
        return mUsedBehind;
    }

    public Map<String, Object> json(VImageIPC image) {
        return JsonWriter.object("memory", mSize, "format", image.mFormat, "width", image.mWidth,
                "height", image.mHeight, "strides", Arrays.toString(image.mRowStrides),
                "planes", mPlanes.stream().map(PlaneUse::json).toList(), "missing", missing(),
                "usedBehind", mUsedBehind, "firstBehind", mFirstBehind);
    }
}
