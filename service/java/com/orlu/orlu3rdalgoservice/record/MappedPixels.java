package com.orlu.orlu3rdalgoservice.record;

import java.nio.ByteBuffer;

/** An image's memory, mapped for reading until close(). */
final class MappedPixels implements AutoCloseable {
    private final ByteBuffer mBytes;
    private Runnable mUnmap;

    /** {@code unmap} removes the mapping. Only the first call of {@link #close} runs it. */
    MappedPixels(ByteBuffer bytes, Runnable unmap) {
        mBytes = bytes;
        mUnmap = unmap;
    }

    /** The bytes; must not be read after {@link #close}. */
    ByteBuffer bytes() {
        return mBytes;
    }

    @Override
    public void close() {
        Runnable unmap = mUnmap;
        mUnmap = () -> { };
        unmap.run();
    }
}
