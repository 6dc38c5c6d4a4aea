package com.orlu.fuzz;

import android.hardware.HardwareBuffer;
import android.os.SharedMemory;
import android.system.ErrnoException;
import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import java.lang.reflect.Field;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.function.IntSupplier;

/**
 * Creates image descriptors and their memory. Closes some of the memory at once, on purpose; close() closes
 * the rest.
 */
final class HostileImages implements AutoCloseable {
    private static final List<String> FORMATS = List.of("NV21", "NV12", "YU12", "YV12", "MIPI_RAW10",
            "MIPI_RAW12", "RAW16", "RAW16_AND_MORE", "RAW_SENSOR", "JPEG", "R8G8B8A8", "NV2", "RAW1");
    // Descriptors that aren't open.
    private static final List<Integer> BAD_DESCRIPTORS = List.of(-1, Integer.MIN_VALUE, 1 << 20,
            Integer.MAX_VALUE);
    private static final int MOST_WORDS = 300;

    private final HostileValues mValues;
    private final List<SharedMemory> mMemories = new ArrayList<>();
    private final List<HardwareBuffer> mBuffers = new ArrayList<>();

    HostileImages(HostileValues values) {
        mValues = values;
    }

    /** Returns an element for a list of images: an image, or rarely any other value. */
    Object element() {
        return mValues.chance(5) ? mValues.anything() : image();
    }

    VImageIPC image() {
        VImageIPC image = new VImageIPC();
        boolean sane = mValues.chance(50);
        image.mFormat = mValues.chance(85) ? mValues.pick(FORMATS)
                : mValues.chance(20) ? null : mValues.text();
        image.mWidth = sane ? 64 : mValues.anInt();
        image.mHeight = sane ? 48 : mValues.anInt();
        image.mRowStrides = sane ? new int[] {64, 64} : ints();
        image.mPlaneSizes = sane ? new int[] {64 * 48, 64 * 24} : ints();
        int memory = mValues.below(10);
        if (memory < 5) {
            image.mImageDataShmem = memory();
        } else if (memory < 9) {
            image.mImageDataHwbuff = buffer();
        }
        return image;
    }

    private int[] ints() {
        return mValues.chance(10) ? null : words(mValues.length(), mValues::anInt);
    }

    private static int[] words(int count, IntSupplier maker) {
        int[] words = new int[count];
        // Only the first elements get hostile values: the native side ignores the rest of a long array.
        Arrays.setAll(words, i -> i < MOST_WORDS ? maker.getAsInt() : 0);
        return words;
    }

    SharedMemory memory() {
        try {
            SharedMemory memory = SharedMemory.create("hostile", mValues.chance(70) ? 64 * 72 : 1);
            if (mValues.chance(20)) {
                memory.close();
            }
            if (mValues.chance(10)) {
                memory.close();
                Field field = SharedMemory.class.getDeclaredField("mFd");
                field.setAccessible(true);
                field.setInt(memory, mValues.pick(BAD_DESCRIPTORS));
            }
            mMemories.add(memory);
            return memory;
        } catch (ErrnoException | ReflectiveOperationException e) {
            throw new IllegalStateException(e);
        }
    }

    private HardwareBuffer buffer() {
        int count = mValues.chance(50) ? mValues.below(4) : mValues.below(MOST_WORDS);
        HardwareBuffer buffer = mValues.chance(40)
                ? HardwareBuffer.create(64, 48, HardwareBuffer.YCBCR_420_888, 1, 0x33)
                : HardwareBuffer.fromHandle(64, 48, 0x23, mValues.below(count + 1),
                        words(count, () -> mValues.pick(BAD_DESCRIPTORS)));
        if (mValues.chance(10)) {
            buffer.close();
        }
        mBuffers.add(buffer);
        return buffer;
    }

    @Override
    public void close() {
        mMemories.forEach(SharedMemory::close);
        mBuffers.forEach(HardwareBuffer::close);
    }
}
