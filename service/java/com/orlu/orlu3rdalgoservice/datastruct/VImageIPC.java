package com.orlu.orlu3rdalgoservice.datastruct;

import android.hardware.HardwareBuffer;
import android.os.SharedMemory;

/**
 * One image as it crosses processes: a description, and the pixels in either a shared memory or a hardware
 * buffer. The native side reads the fields by name, and writes size, format and first plane size of outputs.
 */
public final class VImageIPC {
    /** The format's name, such as "NV21". Never null. */
    public String mFormat;
    /** Pixels. */
    public int mWidth;
    /** Pixels. */
    public int mHeight;
    /** Bytes from one row to the next, for each plane. */
    public int[] mRowStrides;
    /** Bytes of each plane. */
    public int[] mPlaneSizes;
    /** The pixels, or null when they lie in a hardware buffer. */
    public SharedMemory mImageDataShmem;
    /** The pixels, or null when they lie in shared memory. */
    public HardwareBuffer mImageDataHwbuff;
}
