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
import java.util.Set;
import java.util.zip.CRC32;

/**
 * The files of one recording's folder. The lines of its parts go into "recording", each with its CRC-32
 * before it and written whole before the next step, so that a process that ends leaves all that was done
 * until then.
 */
final class RecordFile implements AutoCloseable {
    static final String NAME = "recording";

    private final File mFolder;
    private final FileOutputStream mLines;
    private final Set<String> mChecks = new HashSet<>();
    private long mBytesLeft;

    /** Makes the folder, which may hold this many bytes in all. */
    RecordFile(File folder, long mostBytes) throws IOException {
        if (!folder.mkdirs()) {
            throw new IOException("can't make the folder " + folder);
        }
        mFolder = folder;
        mBytesLeft = mostBytes;
        mLines = new FileOutputStream(new File(folder, NAME));
    }

    void write(JsonText part) throws IOException {
        byte[] text = part.toString().getBytes(StandardCharsets.UTF_8);
        CRC32 check = new CRC32();
        check.update(text);
        byte[] sum = (hex(check) + " ").getBytes(StandardCharsets.US_ASCII);
        byte[] line = new byte[sum.length + text.length + 1];
        System.arraycopy(sum, 0, line, 0, sum.length);
        System.arraycopy(text, 0, line, sum.length, text.length);
        line[line.length - 1] = '\n';
        take(line.length);
        mLines.write(line);
    }

    /** Writes the bytes into a file of their own, and adds its name and check to the part. */
    void writeBytes(String name, ByteBuffer bytes, JsonText part) throws IOException {
        if (bytes.remaining() > mBytesLeft) {
            part.add("kept", "no: the recording would have more bytes than it may");
            return;
        }
        mBytesLeft -= bytes.remaining();
        CRC32 check = new CRC32();
        check.update(bytes.duplicate());
        try (FileOutputStream stream = new FileOutputStream(new File(mFolder, name));
                FileChannel file = stream.getChannel()) {
            ByteBuffer rest = bytes.duplicate();
            while (rest.hasRemaining()) {
                file.write(rest);
            }
        }
        mChecks.add(hex(check) + " " + bytes.remaining());
        part.add("file", name).add("crc", hex(check));
    }

    /**
     * Moves a file of this check into the folder, under its name; one whose bytes are in the folder already
     * is only removed. Returns false for one that is too large, which is removed as well.
     */
    boolean takeFile(File file, String check) throws IOException {
        long size = file.length();
        boolean isHere = mChecks.contains(check + " " + size);
        boolean fits = size <= mBytesLeft;
        if (!isHere && fits) {
            mBytesLeft -= size;
            move(file, new File(mFolder, file.getName()));
        }
        if (file.exists() && !file.delete()) {
            RequestRecorder.warn("can't remove " + file);
        }
        return isHere || fits;
    }

    // Another file system takes a copy.
    private static void move(File file, File to) throws IOException {
        if (file.renameTo(to)) {
            return;
        }
        try (FileInputStream from = new FileInputStream(file);
                FileOutputStream stream = new FileOutputStream(to)) {
            from.getChannel().transferTo(0, file.length(), stream.getChannel());
        }
    }

    private void take(int bytes) throws IOException {
        mBytesLeft -= bytes;
        if (mBytesLeft < 0) {
            throw new IOException("the recording would have more bytes than it may");
        }
    }

    File folder() {
        return mFolder;
    }

    @Override
    public void close() throws IOException {
        mLines.close();
    }

    private static String hex(CRC32 check) {
        return String.format(Locale.ROOT, "%08x", check.getValue());
    }
}
