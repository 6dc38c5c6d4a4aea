package com.orlu.orlu3rdalgoservice.tool.imagefile;

import com.drew.imaging.ImageProcessingException;
import com.drew.imaging.tiff.TiffMetadataReader;
import com.drew.metadata.Directory;
import com.drew.metadata.Metadata;
import com.drew.metadata.exif.ExifDirectoryBase;

import java.io.IOException;
import java.io.RandomAccessFile;
import java.lang.reflect.Array;
import java.nio.file.Files;
import java.nio.file.Path;

/**
 * The sensor's samples in a DNG file: of all its images the one behind a colour filter, in strips or tiles
 * without compression, which is what phones write. What can't be read is an IOException whose message says
 * what is wrong.
 */
public final class DngFile {
    private static final int COLOR_FILTER_ARRAY = 32803;
    private static final int UNCOMPRESSED = 1;
    private static final int TAG_TILE_WIDTH = 0x0142;
    private static final int TAG_TILE_LENGTH = 0x0143;
    private static final int TAG_TILE_OFFSETS = 0x0144;
    private static final int TAG_WHITE_LEVEL = 0xC61D;
    private static final int LARGEST_SIDE = 1 << 16;

    private final Path mPath;
    private final Directory mImage;
    private final int mWidth;
    private final int mHeight;
    private final int mSampleBits;
    private final int mBlockWidth;
    private final int mBlockHeight;
    private final long[] mOffsets;

    private DngFile(Path path, Directory image) throws IOException {
        mPath = path;
        mImage = image;
        mWidth = number(ExifDirectoryBase.TAG_IMAGE_WIDTH, "ImageWidth", 1, LARGEST_SIDE, -1);
        mHeight = number(ExifDirectoryBase.TAG_IMAGE_HEIGHT, "ImageLength", 1, LARGEST_SIDE, -1);
        mSampleBits = number(ExifDirectoryBase.TAG_BITS_PER_SAMPLE, "BitsPerSample", 8, 16, -1);
        number(ExifDirectoryBase.TAG_SAMPLES_PER_PIXEL, "SamplesPerPixel", 1, 1, 1);
        number(ExifDirectoryBase.TAG_COMPRESSION, "Compression", UNCOMPRESSED, UNCOMPRESSED, UNCOMPRESSED);
        boolean isTiled = image.containsTag(TAG_TILE_OFFSETS);
        mBlockWidth = isTiled ? number(TAG_TILE_WIDTH, "TileWidth", 1, LARGEST_SIDE, -1) : mWidth;
        mBlockHeight = isTiled ? number(TAG_TILE_LENGTH, "TileLength", 1, LARGEST_SIDE, -1)
                : rowsPerStrip();
        mOffsets = values(isTiled ? TAG_TILE_OFFSETS : ExifDirectoryBase.TAG_STRIP_OFFSETS);
        checkBlocks();
    }

    // One strip for all rows can have 2^32-1 of them.
    private int rowsPerStrip() {
        long[] rows = values(ExifDirectoryBase.TAG_ROWS_PER_STRIP);
        return rows.length == 0 || rows[0] < 1 || rows[0] > mHeight ? mHeight : (int) rows[0];
    }

    /** Reads the headers, and checks that all samples lie in the file. */
    public static DngFile open(Path path) throws IOException {
        for (Directory directory : metadata(path).getDirectories()) {
            Integer photometric = directory.getInteger(ExifDirectoryBase.TAG_PHOTOMETRIC_INTERPRETATION);
            if (photometric != null && photometric == COLOR_FILTER_ARRAY) {
                return new DngFile(path, directory);
            }
        }
        throw new IOException("no raw image in it: no PhotometricInterpretation is " + COLOR_FILTER_ARRAY);
    }

    private static Metadata metadata(Path path) throws IOException {
        try {
            return TiffMetadataReader.readMetadata(path.toFile());
        } catch (ImageProcessingException | RuntimeException e) {
            // The reader lets the latter pass on damaged files.
            throw new IOException("not a DNG file: " + e.getMessage(), e);
        }
    }

    public int width() {
        return mWidth;
    }

    public int height() {
        return mHeight;
    }

    /** How many bits the white level takes; those of a sample in the file where it names no level. */
    public int bits() {
        long[] levels = values(TAG_WHITE_LEVEL);
        if (levels.length == 0 || levels[0] < 1 || levels[0] > 0xFFFF) {
            return mSampleBits;
        }
        return Long.SIZE - Long.numberOfLeadingZeros(levels[0]);
    }

    /** Hands over all samples, block by block. */
    public void readSamples(SampleSink to) throws IOException {
        try (RandomAccessFile file = new RandomAccessFile(mPath.toFile(), "r")) {
            boolean isLittleEndian = file.read() == 'I';
            int across = blocksAcross();
            byte[] row = new byte[rowBytes()];
            for (int i = 0; i < mOffsets.length; ++i) {
                int left = i % across * mBlockWidth;
                int top = i / across * mBlockHeight;
                file.seek(mOffsets[i]);
                // A tile at the right or lower edge holds padding, a last strip none.
                for (int y = top; y < Math.min(mHeight, top + mBlockHeight); ++y) {
                    file.readFully(row);
                    for (int x = left; x < Math.min(mWidth, left + mBlockWidth); ++x) {
                        to.put(x, y, sample(row, x - left, isLittleEndian));
                    }
                }
            }
        }
    }

    // Whole samples have the file's byte order; packed ones begin at the highest bit in every file.
    private int sample(byte[] row, int x, boolean isLittleEndian) {
        if (mSampleBits == Short.SIZE) {
            int first = row[2 * x] & 0xFF;
            int second = row[2 * x + 1] & 0xFF;
            return isLittleEndian ? second << 8 | first : first << 8 | second;
        }
        int sample = 0;
        for (int bit = x * mSampleBits; bit < (x + 1) * mSampleBits; ++bit) {
            sample = sample << 1 | row[bit / 8] >> (7 - bit % 8) & 1;
        }
        return sample;
    }

    private int rowBytes() {
        return (mBlockWidth * mSampleBits + 7) / 8;
    }

    private int blocksAcross() {
        return (mWidth + mBlockWidth - 1) / mBlockWidth;
    }

    private void checkBlocks() throws IOException {
        int needed = blocksAcross() * ((mHeight + mBlockHeight - 1) / mBlockHeight);
        if (mOffsets.length != needed) {
            throw new IOException("needs " + needed + " strips or tiles, found " + mOffsets.length);
        }
        long size = Files.size(mPath);
        for (int i = 0; i < needed; ++i) {
            int rows = Math.min(mBlockHeight, mHeight - i / blocksAcross() * mBlockHeight);
            long end = mOffsets[i] + (long) rowBytes() * rows;
            if (end > size) {
                throw new IOException("too short: strip or tile " + i + " needs " + end + " bytes, found "
                        + size);
            }
        }
    }

    // A fallback below 0 stands for none.
    private int number(int tag, String name, int least, int most, int fallback) throws IOException {
        long[] values = values(tag);
        if (values.length == 0) {
            if (fallback >= 0) {
                return fallback;
            }
            throw new IOException("the raw image has no " + name);
        }
        if (values[0] < least || values[0] > most) {
            throw new IOException(name + " needs " + (least == most ? "" + least : least + " to " + most)
                    + ", found " + values[0]);
        }
        return (int) values[0];
    }

    // The reader keeps one number as such, more of them as an array of the file's type.
    private long[] values(int tag) {
        Object held = mImage.getObject(tag);
        if (held instanceof Number number) {
            return new long[] {number.longValue()};
        }
        boolean isNumbers = held != null && held.getClass().isArray()
                && held.getClass().getComponentType().isPrimitive();
        long[] values = new long[isNumbers ? Array.getLength(held) : 0];
        for (int i = 0; i < values.length; ++i) {
            values[i] = ((Number) Array.get(held, i)).longValue();
        }
        return values;
    }
}
