package com.orlu.orlu3rdalgoservice.tool.model;

import android.hardware.HardwareBuffer;
import android.os.SharedMemory;
import android.system.ErrnoException;

import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.nio.ByteBuffer;

/** One image of a recording: its description, and its bytes where they were kept. */
public final class RecordedImage {
    private static final long USAGE =
            HardwareBuffer.USAGE_CPU_READ_OFTEN | HardwareBuffer.USAGE_CPU_WRITE_OFTEN;

    private final RecordedRequest mOwner;
    private final JsonObject mPart;

    RecordedImage(RecordedRequest owner, JsonObject part) {
        mOwner = owner;
        mPart = part;
    }

    public JsonObject part() {
        return mPart;
    }

    public String format() {
        return mPart.get("format").getAsString();
    }

    public int number(String name) {
        return mPart.has(name) ? mPart.get(name).getAsInt() : 0;
    }

    public int[] numbers(String name) {
        JsonElement field = mPart.get(name);
        if (field == null || field.isJsonNull()) {
            return null;
        }
        int[] numbers = new int[field.getAsJsonArray().size()];
        for (int i = 0; i < numbers.length; ++i) {
            numbers[i] = field.getAsJsonArray().get(i).getAsInt();
        }
        return numbers;
    }

    /** "NV21 632x416", and where it lies. */
    public String text() {
        return format() + " " + number("width") + "x" + number("height") + ", "
                + mPart.get("memory").getAsString();
    }

    /** Whether the bytes lie in a file. Those of an untouched output, all 0, do not. */
    public boolean hasBytes() {
        return mPart.has("file");
    }

    /** The bytes; null when none were kept. MistakeException when their file is cut or damaged. */
    public byte[] bytes() throws MistakeException {
        return hasBytes()
                ? mOwner.checkedBytes(mPart.get("file").getAsString(), mPart.get("crc").getAsString()) : null;
    }

    /** A new image of the same description, memory and bytes. The caller closes its memory. */
    public VImageIPC make() throws MistakeException, ErrnoException {
        return make(bytes());
    }

    /** The same without the bytes, all 0, also where those that were kept are damaged. */
    public VImageIPC makeEmpty() throws ErrnoException {
        return make(null);
    }

    private VImageIPC make(byte[] bytes) throws ErrnoException {
        VImageIPC image = new VImageIPC();
        image.mFormat = format();
        image.mWidth = number("width");
        image.mHeight = number("height");
        image.mRowStrides = numbers("rowStrides");
        image.mPlaneSizes = numbers("planeSizes");
        ByteBuffer memory;
        switch (mPart.get("memory").getAsString()) {
            case "hardware" -> {
                image.mImageDataHwbuff = HardwareBuffer.create(number("bufferWidth"), number("bufferHeight"),
                        number("bufferFormat"), 1, USAGE);
                memory = image.mImageDataHwbuff.mapPixels();
            }
            case "shared" -> {
                image.mImageDataShmem = SharedMemory.create("orlu-image", Math.max(1, number("size")));
                memory = image.mImageDataShmem.mapReadWrite();
            }
            default -> {
                return image;
            }
        }
        if (bytes != null) {
            memory.put(0, bytes, 0, Math.min(bytes.length, memory.capacity()));
        }
        SharedMemory.unmap(memory);
        return image;
    }

    /** Gives the memory of an image back that was made here. */
    public static void close(VImageIPC image) {
        if (image.mImageDataHwbuff != null) {
            image.mImageDataHwbuff.close();
        }
        if (image.mImageDataShmem != null) {
            image.mImageDataShmem.close();
        }
    }
}
