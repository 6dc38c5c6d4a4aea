package com.orlu.orlu3rdalgoservice.record;

import android.hardware.HardwareBuffer;

import java.nio.ByteBuffer;

/** Maps hardware buffers through liborlu.recorder.so, because no public class of the platform maps them. */
final class HardwarePixels {
    /** The reason why liborlu.recorder.so can't be loaded; null if it is loaded. */
    private static final String PROBLEM = load();

    private HardwarePixels() {
    }

    private static String load() {
        try {
            System.loadLibrary("orlu.recorder");
            return null;
        } catch (UnsatisfiedLinkError e) {
            return String.valueOf(e.getMessage());
        }
    }

    /**
     * Locks the buffer for reading. Rows include their padding, and planes are in memory order. Throws
     * IllegalStateException with the reason if the pixels can't be read.
     */
    static MappedPixels lock(HardwareBuffer buffer) {
        if (PROBLEM != null) {
            throw new IllegalStateException(PROBLEM);
        }
        long[] locked = new long[1];
        ByteBuffer bytes = nLock(buffer, locked);
        return new MappedPixels(bytes, () -> nUnlock(locked[0]));
    }

    private static native ByteBuffer nLock(HardwareBuffer buffer, long[] locked);

    private static native void nUnlock(long locked);
}
