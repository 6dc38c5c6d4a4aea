package com.orlu.orlu3rdalgoservice.record;

import java.io.File;
import java.io.FileInputStream;
import java.io.FileOutputStream;
import java.io.IOException;
import java.nio.ByteBuffer;
import java.nio.channels.FileChannel;
import java.nio.charset.StandardCharsets;
import java.util.HashSet;
import java.util.Locale;
import java.util.Map;
import java.util.Set;
import java.util.zip.CRC32;

/** The folder of one recording. */
final class RecordFolder {
    /** The inputs, in the form of a request file; written before the request runs. */
    static final String REQUEST = "request.json";
    /** The result of the request; missing if the process ended early. */
    static final String OUTCOME = "outcome.json";
    static final String EVENTS = "events.jsonl";
    static final String TOO_LARGE = "no: the size limit of the recording is reached";

    /** Outer nesting levels of each file that are broken into lines, so that each tag has its own line. */
    private static final int REQUEST_LEVELS = 4;
    private static final int OUTCOME_LEVELS = 3;

    private final File mFolder;
    private final RequestRecorder.Pixels mPixels;
    private final Set<String> mChecks = new HashSet<>();
    private long mBytesLeft;

    /** Creates the folder. `mostBytes` limits its size; `pixels` selects the pixels to store. */
    RecordFolder(File folder, long mostBytes, RequestRecorder.Pixels pixels) throws IOException {
        if (!folder.mkdirs()) {
            throw new IOException("can't create the folder " + folder);
        }
        mFolder = folder;
        mBytesLeft = mostBytes;
        mPixels = pixels;
    }

    void write(String name, Map<String, Object> json) throws IOException {
        byte[] bytes = bytes(json, name.equals(REQUEST) ? REQUEST_LEVELS : OUTCOME_LEVELS);
        mBytesLeft -= bytes.length;
        if (mBytesLeft < 0) {
            throw new IOException("the size limit of the recording is reached");
        }
        writeAll(name, ByteBuffer.wrap(bytes));
    }

    /** Replaces the outcome with the reason why recording failed. */
    void fail(String what) throws IOException {
        writeAll(OUTCOME, ByteBuffer.wrap(bytes(JsonWriter.object("failed", what), OUTCOME_LEVELS)));
    }

    private static byte[] bytes(Map<String, Object> json, int levels) {
        return JsonWriter.pretty(json, levels).getBytes(StandardCharsets.UTF_8);
    }

    private void writeAll(String name, ByteBuffer bytes) throws IOException {
        File file = new File(mFolder, name);
        try (FileOutputStream stream = new FileOutputStream(file);
                FileChannel channel = stream.getChannel()) {
            while (bytes.hasRemaining()) {
                channel.write(bytes);
            }
        } catch (IOException e) {
            removePartial(file);
            throw e;
        }
    }

    // Removes a partial file, which is useless: outcome.json, with the reason for the failure, may need the
    // disk space.
    private static void removePartial(File file) {
        if (file.isFile() && !file.delete()) {
            RequestRecorder.warn("can't remove " + file);
        }
    }

    boolean keepsProbePixels() {
        return mPixels == RequestRecorder.Pixels.ALL;
    }

    /** Writes the bytes of one of Java's images if pixels are recorded. */
    void writePixels(String name, ByteBuffer bytes, Map<String, Object> json) throws IOException {
        if (mPixels == RequestRecorder.Pixels.NONE) {
            json.put("kept", "no: pixels are not recorded");
        } else {
            writeBytes(name, bytes, json);
        }
    }

    /**
     * Writes a file and adds its name and checksum to `json`. If the file would exceed the recording's size
     * limit, writes nothing and adds TOO_LARGE to `json`.
     */
    void writeBytes(String name, ByteBuffer bytes, Map<String, Object> json) throws IOException {
        if (bytes.remaining() > mBytesLeft) {
            json.put("kept", TOO_LARGE);
            return;
        }
        mBytesLeft -= bytes.remaining();
        CRC32 check = new CRC32();
        check.update(bytes.duplicate());
        writeAll(name, bytes.duplicate());
        String crc = String.format(Locale.ROOT, "%08x", check.getValue());
        mChecks.add(crc + " " + bytes.remaining());
        json.put("file", name);
        json.put("crc", crc);
    }

    /**
     * Moves a file, whose checksum is `check`, into the folder and returns true. If writeBytes() has written
     * a file of the same checksum and size, deletes the file instead and returns true. Otherwise, if the file
     * exceeds the rest of the size limit, deletes it and returns false.
     */
    boolean takeFile(File file, String check) throws IOException {
        long size = file.length();
        boolean isHere = mChecks.contains(check + " " + size);
        boolean fits = size <= mBytesLeft;
        if (!isHere && fits) {
            mBytesLeft -= size;
            move(file, size, new File(mFolder, file.getName()));
        }
        if (file.exists() && !file.delete()) {
            RequestRecorder.warn("can't remove " + file);
        }
        return isHere || fits;
    }

    // Copies the file if renaming fails, as it does across file systems. The caller deletes the original.
    private static void move(File file, long size, File to) throws IOException {
        if (file.renameTo(to)) {
            return;
        }
        try (FileInputStream from = new FileInputStream(file);
                FileOutputStream stream = new FileOutputStream(to)) {
            long copied = 0;
            while (copied < size) {
                // transferTo() may copy only a part of a large file.
                long more = from.getChannel().transferTo(copied, size - copied, stream.getChannel());
                if (more == 0) {
                    throw new IOException(file + ": expected " + size + " bytes, found " + copied);
                }
                copied += more;
            }
        } catch (IOException e) {
            removePartial(to);
            throw e;
        }
    }

    File folder() {
        return mFolder;
    }
}
