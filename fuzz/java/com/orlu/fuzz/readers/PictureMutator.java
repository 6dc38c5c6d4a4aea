package com.orlu.fuzz.readers;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import java.util.zip.CRC32;

/** Changes records of image files: entries of TIFF directories, chunks of PNG and segments of JPEG files. */
final class PictureMutator {
    private static final int[] WORDS = {0, 1, 2, 3, 8, 255, 256, 16384, 16385, 32768, 65535, 1 << 20, 1 << 28,
        Integer.MAX_VALUE, Integer.MIN_VALUE, -1};
    private static final int TIFF_ENTRY = 12;
    private static final int PNG_SIGNATURE = 8;
    private static final int PNG_FRAME = 12;
    private static final int START_OF_SCAN = 0xda;

    private final Random mChance;

    PictureMutator(Random chance) {
        mChance = chance;
    }

    /** Changes one record in place. If there is no record, changes bytes at a random offset. */
    void mutate(byte[] bytes) {
        ByteBuffer all = ByteBuffer.wrap(bytes);
        int start = bytes.length < 16 ? 0 : all.getInt(0);
        boolean changed = start == 0x89504e47 ? changeChunk(all)
                : start >>> 16 == 0xffd8 ? changeSegment(all)
                : (start == 0x49492a00 || start == 0x4d4d002a) && changeEntry(all);
        if (!changed && bytes.length > 0) {
            putWord(all, mChance.nextInt(bytes.length), bytes.length);
        }
    }

    private void putWord(ByteBuffer to, int at, int end) {
        int word = WORDS[mChance.nextInt(WORDS.length)];
        if (mChance.nextInt(3) == 0) {
            to.put(at, (byte) mChance.nextInt());
        } else if (mChance.nextBoolean() && at + Integer.BYTES <= end) {
            to.putInt(at, word);
        } else if (at + Short.BYTES <= end) {
            to.putShort(at, (short) word);
        }
    }

    // Changes the type, count or value of an entry; rarely its tag. Returns false if there is no entry.
    private boolean changeEntry(ByteBuffer tiff) {
        tiff.order(tiff.get(0) == 'I' ? ByteOrder.LITTLE_ENDIAN : ByteOrder.BIG_ENDIAN);
        List<Integer> entries = new ArrayList<>();
        addEntries(tiff, tiff.getInt(4), entries, 0);
        if (entries.isEmpty()) {
            return false;
        }
        int at = entries.get(mChance.nextInt(entries.size()));
        switch (mChance.nextInt(10)) {
            case 0 -> tiff.putShort(at, tiff.getShort(entries.get(mChance.nextInt(entries.size()))));
            case 1, 2 -> tiff.putShort(at + 2, (short) mChance.nextInt(16));
            case 3, 4, 5 -> putWord(tiff, at + 4, at + 8);
            case 6 -> tiff.putInt(at + 8, mChance.nextInt(tiff.capacity()));
            default -> putWord(tiff, at + 8 + 2 * mChance.nextInt(2), at + TIFF_ENTRY);
        }
        return true;
    }

    private static void addEntries(ByteBuffer tiff, int at, List<Integer> entries, int level) {
        if (level > 3 || at < 8 || at > tiff.capacity() - 2) {
            return;
        }
        int count = Short.toUnsignedInt(tiff.getShort(at));
        for (int entry = at + 2; count > 0 && entry + TIFF_ENTRY <= tiff.capacity(); --count,
                entry += TIFF_ENTRY) {
            entries.add(entry);
            int tag = Short.toUnsignedInt(tiff.getShort(entry));
            // The values of these tags are offsets of directories: further images, EXIF and GPS.
            if (tag == 0x14a || tag == 0x8769 || tag == 0x8825) {
                addEntries(tiff, tiff.getInt(entry + 8), entries, level + 1);
            }
        }
    }

    // Changes the data of a chunk and corrects the checksum; sometimes changes the chunk's length or type
    // instead. Returns false if there is no chunk.
    private boolean changeChunk(ByteBuffer png) {
        List<Integer> chunks = new ArrayList<>();
        int at = PNG_SIGNATURE;
        while (at <= png.capacity() - PNG_FRAME) {
            chunks.add(at);
            int length = png.getInt(at);
            at = length < 0 || length > png.capacity() ? png.capacity() : at + length + PNG_FRAME;
        }
        if (chunks.isEmpty()) {
            return false;
        }
        at = chunks.get(mChance.nextInt(chunks.size()));
        int length = png.getInt(at);
        if (length < 1 || length > png.capacity() - PNG_FRAME - at || mChance.nextInt(8) == 0) {
            putWord(png, at, at + 8);
            return true;
        }
        putWord(png, at + 8 + mChance.nextInt(length), at + 8 + length);
        CRC32 sum = new CRC32();
        sum.update(png.array(), at + 4, length + 4);
        png.putInt(at + 8 + length, (int) sum.getValue());
        return true;
    }

    private boolean changeSegment(ByteBuffer jpeg) {
        List<Integer> segments = new ArrayList<>();
        int at = 2;
        while (at + 4 <= jpeg.capacity() && (jpeg.get(at) & 0xff) == 0xff) {
            segments.add(at);
            int marker = jpeg.get(at + 1) & 0xff;
            at += 2 + Short.toUnsignedInt(jpeg.getShort(at + 2));
            if (marker == START_OF_SCAN) {
                break;
            }
        }
        if (segments.isEmpty()) {
            return false;
        }
        at = segments.get(mChance.nextInt(segments.size()));
        int end = Math.min(jpeg.capacity(), at + 2 + Short.toUnsignedInt(jpeg.getShort(at + 2)));
        boolean isExif = jpeg.get(at + 1) == (byte) 0xe1 && end - at > 26;
        if (isExif && mChance.nextInt(4) > 0) {
            return changeEntry(jpeg.slice(at + 10, end - at - 10));
        }
        putWord(jpeg, at + mChance.nextInt(Math.max(1, end - at)), end);
        return true;
    }
}
