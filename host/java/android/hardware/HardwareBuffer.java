package android.hardware;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.Objects;

/** A buffer that hardware can read and write. Its native handle contains real file descriptors. */
public final class HardwareBuffer implements AutoCloseable {
    public static final int RGBA_8888 = 1;
    public static final int RAW16 = 0x20;
    public static final int BLOB = 0x21;
    public static final int YCBCR_420_888 = 0x23;

    public static final long USAGE_CPU_READ_OFTEN = 3;
    public static final long USAGE_CPU_WRITE_OFTEN = 3 << 4;

    static {
        System.loadLibrary("android_runtime");
    }

    // Pointer to an AHardwareBuffer; this object owns one reference to it. 0 when closed.
    // AHardwareBuffer_fromHardwareBuffer() reads this field.
    private long mNativeObject;

    // Takes ownership of one reference to the AHardwareBuffer.
    private HardwareBuffer(long nativeObject) {
        mNativeObject = nativeObject;
    }

    /** Creates a buffer of pixels; a BLOB has {@code width} bytes. */
    public static HardwareBuffer create(int width, int height, int format, int layers, long usage) {
        if (width < 1 || height < 1 || layers != 1) {
            throw new IllegalArgumentException("Invalid size of hardware buffer: " + width + " x " + height
                    + ", " + layers + " layers");
        }
        return checked(nCreate(width, height, format, layers, usage));
    }

    /**
     * Host only, for tests with unusual handles: creates a buffer whose native handle contains the words. The
     * first {@code numFds} words are descriptors; the buffer takes ownership of them.
     */
    public static HardwareBuffer fromHandle(int width, int height, int format, int numFds, int[] words) {
        return checked(nFromHandle(width, height, format, numFds, Objects.requireNonNull(words)));
    }

    public int getWidth() {
        return describe()[0];
    }

    public int getHeight() {
        return describe()[1];
    }

    public int getFormat() {
        return describe()[2];
    }

    /** Host only: maps the pixels; {@link android.os.SharedMemory#unmap} ends the mapping. */
    public ByteBuffer mapPixels() {
        checkOpen();
        ByteBuffer pixels = nMapPixels(mNativeObject);
        if (pixels == null) {
            throw new IllegalStateException("The pixels can't be mapped");
        }
        return pixels.order(ByteOrder.nativeOrder());
    }

    @Override
    public void close() {
        if (mNativeObject != 0) {
            nRelease(mNativeObject);
            mNativeObject = 0;
        }
    }

    private static HardwareBuffer checked(long nativeObject) {
        if (nativeObject == 0) {
            throw new IllegalArgumentException("The hardware buffer can't be created");
        }
        return new HardwareBuffer(nativeObject);
    }

    private int[] describe() {
        checkOpen();
        return nDescribe(mNativeObject);
    }

    private void checkOpen() {
        if (mNativeObject == 0) {
            throw new IllegalStateException("This HardwareBuffer has been closed");
        }
    }

    private static native long nCreate(int width, int height, int format, int layers, long usage);

    private static native long nFromHandle(int width, int height, int format, int numFds, int[] words);

    private static native void nRelease(long nativeObject);

    private static native int[] nDescribe(long nativeObject);

    private static native ByteBuffer nMapPixels(long nativeObject);
}
