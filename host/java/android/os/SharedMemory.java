package android.os;

import android.system.ErrnoException;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;

/** A memory file that is passed to native code by its descriptor. */
public final class SharedMemory implements AutoCloseable {
    static {
        System.loadLibrary("android_runtime");
    }

    // Read by ASharedMemory_dupFromJava(); -1 when closed.
    private int mFd;
    private final int mSize;

    private SharedMemory(int fd, int size) {
        mFd = fd;
        mSize = size;
    }

    /** Creates a zero-filled file of {@code size} bytes; the size must be at least 1. */
    public static SharedMemory create(String name, int size) throws ErrnoException {
        if (size <= 0) {
            throw new IllegalArgumentException("Size must be greater than zero");
        }
        int fd = nCreate(name, size);
        if (fd < 0) {
            throw new ErrnoException("SharedMemory.create", -fd);
        }
        return new SharedMemory(fd, size);
    }

    public int getSize() {
        checkOpen();
        return mSize;
    }

    /** Maps the complete file. The mapping stays valid after {@link #close}; {@link #unmap} ends it. */
    public ByteBuffer mapReadWrite() throws ErrnoException {
        return map(true);
    }

    /** Like {@link #mapReadWrite}, but read-only. */
    public ByteBuffer mapReadOnly() throws ErrnoException {
        return map(false).asReadOnlyBuffer().order(ByteOrder.nativeOrder());
    }

    /** Ends a mapping. Pass the buffer that the mapping method returned, and do not use it afterwards. */
    public static void unmap(ByteBuffer mapping) {
        if (!mapping.isDirect()) {
            throw new IllegalArgumentException("The buffer is not a mapping");
        }
        nUnmap(mapping);
    }

    @Override
    public void close() {
        if (mFd >= 0) {
            nClose(mFd);
            mFd = -1;
        }
    }

    private ByteBuffer map(boolean writable) throws ErrnoException {
        checkOpen();
        return nMap(mFd, mSize, writable).order(ByteOrder.nativeOrder());
    }

    private void checkOpen() {
        if (mFd < 0) {
            throw new IllegalStateException("SharedMemory is closed");
        }
    }

    private static native int nCreate(String name, int size);

    private static native void nClose(int fd);

    private static native ByteBuffer nMap(int fd, int size, boolean writable) throws ErrnoException;

    private static native void nUnmap(ByteBuffer mapping);
}
