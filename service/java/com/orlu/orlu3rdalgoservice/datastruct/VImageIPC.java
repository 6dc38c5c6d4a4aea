package com.orlu.orlu3rdalgoservice.datastruct;

import android.hardware.HardwareBuffer;
import android.os.SharedMemory;

/**
 * An image passed between processes: a description, and pixels in shared memory or a hardware buffer. The
 * native side finds the fields by name. It reads all fields, and in outputs it also writes the format, the
 * width, the height and the first plane size.
 */
public final class VImageIPC {
    /** The format's name, such as "NV21". Never null. */
    public String mFormat;
    /** Width in pixels. */
    public int mWidth;
    /** Height in pixels. */
    public int mHeight;
    /** Bytes from one row to the next, for each plane. */
    public int[] mRowStrides;
    /** Bytes of each plane. */
    public int[] mPlaneSizes;
    /** The pixels; null if they are in a hardware buffer. */
    public SharedMemory mImageDataShmem;
    /** The pixels; null if they are in shared memory. */
    public HardwareBuffer mImageDataHwbuff;
}
