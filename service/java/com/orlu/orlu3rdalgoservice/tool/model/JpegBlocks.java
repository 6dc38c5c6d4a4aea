package com.orlu.orlu3rdalgoservice.tool.model;

import java.nio.charset.StandardCharsets;
import java.util.Arrays;

/** Blanks the parts of a JPEG file that decoders don't need for the picture. */
final class JpegBlocks {
    private static final int MARKER = 0xff;
    private static final int START_OF_IMAGE = 0xd8;
    private static final int FIRST_RESTART = 0xd0;
    private static final int END_OF_IMAGE = 0xd9;
    private static final int START_OF_SCAN = 0xda;
    private static final int FIRST_APPLICATION = 0xe0;
    private static final int LAST_APPLICATION = 0xef;
    private static final int COMMENT = 0xfe;
    /** Size of a JFIF block without its thumbnail, in bytes. */
    private static final int JFIF_HEADER = 18;
    /** Size of the block with the colour transform, in bytes. Decoders need this block. */
    private static final int COLOUR_TRANSFORM = 16;

    private final byte[] mBytes;
    private final byte[] mPlain;

    private JpegBlocks(byte[] bytes) {
        mBytes = bytes;
        mPlain = bytes.clone();
    }

    /**
     * Returns a copy of the same size in which these bytes are 0: contents of EXIF and other application
     * blocks, thumbnails, comments, stray bytes between blocks, and bytes after the picture. Keeps markers
     * and what decoders need for colours. Returns the array itself if nothing changes or it is not a JPEG.
     */
    static byte[] blank(byte[] bytes) {
        if (bytes.length < 3 || at(bytes, 0) != MARKER || at(bytes, 1) != START_OF_IMAGE
                || at(bytes, 2) != MARKER) {
            return bytes;
        }
        JpegBlocks blocks = new JpegBlocks(bytes);
        blocks.blank();
        return Arrays.equals(blocks.mPlain, bytes) ? bytes : blocks.mPlain;
    }

    private void blank() {
        int from = 2;
        while (from + 1 < mBytes.length) {
            int marker = at(mBytes, from + 1);
            if (at(mBytes, from) != MARKER) {
                // Decoders skip to the next marker.
                mPlain[from++] = 0;
            } else if (marker == END_OF_IMAGE) {
                from += 2;
                break;
            } else if (marker == MARKER) {
                ++from;
            } else if (marker <= 1 || marker >= FIRST_RESTART && marker <= START_OF_IMAGE) {
                from += 2;
            } else {
                from = afterBlock(from, marker);
            }
        }
        Arrays.fill(mPlain, Math.min(from, mPlain.length), mPlain.length, (byte) 0);
    }

    // A block is a marker, a two-byte length and contents. The length counts itself and the contents.
    // Returns the offset after the block; for a start of scan, the offset after its scan.
    private int afterBlock(int from, int marker) {
        int length = from + 4 > mBytes.length ? 2 : at(mBytes, from + 2) << 8 | at(mBytes, from + 3);
        int end = Math.min(mBytes.length, from + 2 + Math.max(2, length));
        if (marker == START_OF_SCAN) {
            return afterScan(end);
        } else if (marker == COMMENT || marker >= FIRST_APPLICATION && marker <= LAST_APPLICATION) {
            Arrays.fill(mPlain, Math.min(end, from + keptBytes(from, end)), end, (byte) 0);
        }
        return end;
    }

    // Returns how many bytes to keep of an application block or comment. Keeps a colour profile, the colour
    // transform, and a JFIF block up to its thumbnail. Of any other block, keeps the marker and the length.
    private int keptBytes(int from, int end) {
        String name = new String(mBytes, Math.min(end, from + 4), Math.max(0, Math.min(11, end - from - 4)),
                StandardCharsets.ISO_8859_1);
        if (at(mBytes, from + 1) == 0xe2 && name.equals("ICC_PROFILE")) {
            return end - from;
        }
        if (at(mBytes, from + 1) == 0xee && name.startsWith("Adobe")) {
            return COLOUR_TRANSFORM;
        }
        if (at(mBytes, from + 1) == FIRST_APPLICATION && name.startsWith("JFIF\0")
                && end - from >= JFIF_HEADER) {
            // Sets the thumbnail's size to 0.
            mPlain[from + JFIF_HEADER - 2] = 0;
            mPlain[from + JFIF_HEADER - 1] = 0;
            return JFIF_HEADER;
        }
        return 4;
    }

    // A scan ends at any marker except a restart. A byte 0xff before a 0 is data, not a marker.
    private int afterScan(int from) {
        int at = from;
        while (at + 1 < mBytes.length) {
            int next = at(mBytes, at + 1);
            if (at(mBytes, at) == MARKER && next != 0 && next != MARKER
                    && (next < FIRST_RESTART || next >= START_OF_IMAGE)) {
                return at;
            }
            ++at;
        }
        return mBytes.length;
    }

    private static int at(byte[] bytes, int index) {
        return Byte.toUnsignedInt(bytes[index]);
    }
}
