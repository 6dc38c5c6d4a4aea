package com.orlu.orlu3rdalgoservice.tool.imagefile;

import java.io.IOException;
import java.nio.charset.Charset;
import java.nio.file.Files;
import java.nio.file.Path;

/**
 * The sensor's samples in a DNG file: of all its images the one behind a colour filter, in strips or tiles
 * without compression or with lossless JPEG. LibRaw decodes them, in a native library that is opened with
 * this class. What can't be read is an IOException whose message says what is wrong.
 */
public final class DngFile {
    static {
        System.loadLibrary("orlu_dng");
    }

    private final byte[] mPath;
    private final int mWidth;
    private final int mHeight;
    private final int mBits;

    private DngFile(byte[] path, int width, int height, int bits) {
        mPath = path;
        mWidth = width;
        mHeight = height;
        mBits = bits;
    }

    /** Takes a row of samples, which is valid during the call. */
    @FunctionalInterface
    private interface RowSink {
        void put(int y, short[] row);
    }

    // Width, height and bits.
    private static native int[] nDescribe(byte[] path) throws IOException;

    private static native void nReadRows(byte[] path, RowSink to) throws IOException;

    /** Reads the headers, and checks that all samples can lie in the file. */
    public static DngFile open(Path path) throws IOException {
        if (!Files.isReadable(path)) {
            throw new IOException("can't be opened");
        }
        byte[] name = path.toString().getBytes(Charset.forName(System.getProperty("sun.jnu.encoding")));
        int[] described = nDescribe(name);
        return new DngFile(name, described[0], described[1], described[2]);
    }

    public int width() {
        return mWidth;
    }

    public int height() {
        return mHeight;
    }

    /** How many bits the white level takes; those of a sample in the file where it names no level. */
    public int bits() {
        return mBits;
    }

    /** Hands over all samples, of the whole sensor, row by row. */
    public void readSamples(SampleSink to) throws IOException {
        nReadRows(mPath, (y, row) -> {
            for (int x = 0; x < row.length; ++x) {
                to.put(x, y, Short.toUnsignedInt(row[x]));
            }
        });
    }
}
