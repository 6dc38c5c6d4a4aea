package com.orlu.orlu3rdalgoservice.tool.imagefile;

import java.io.IOException;
import java.nio.charset.Charset;
import java.nio.file.Files;
import java.nio.file.Path;

/**
 * Reads the sensor samples of a DNG file: the first image with a colour filter array. The image is in strips
 * or tiles, which are uncompressed or lossless JPEG. The class loads a native library, in which LibRaw
 * decodes the samples. Methods throw an IOException with the reason if a file can't be read.
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

    /** Receives a row of samples. The array is valid only during the call. */
    @FunctionalInterface
    private interface RowSink {
        void put(int y, short[] row);
    }

    // Returns width, height and bit depth.
    private static native int[] nDescribe(byte[] path) throws IOException;

    private static native void nReadRows(byte[] path, RowSink to) throws IOException;

    /** Reads the headers, and checks that the file is not too short for its samples. */
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

    /** Number of bits that the white level needs; without a valid white level, the bits per stored sample. */
    public int bits() {
        return mBits;
    }

    /** Calls `to` for each sample of the whole sensor, in row order. */
    public void readSamples(SampleSink to) throws IOException {
        nReadRows(mPath, (y, row) -> {
            for (int x = 0; x < row.length; ++x) {
                to.put(x, y, Short.toUnsignedInt(row[x]));
            }
        });
    }
}
