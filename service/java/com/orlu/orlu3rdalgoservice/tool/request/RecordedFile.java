package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.ByteBuffer;
import java.nio.channels.FileChannel;
import java.nio.file.Files;
import java.nio.file.LinkOption;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import java.nio.file.StandardOpenOption;
import java.nio.file.attribute.BasicFileAttributes;
import java.util.regex.Pattern;
import java.util.zip.CRC32;

/**
 * An untrusted file in the folder of a recording. Its name is plain (see isPlain()). The file must be a
 * regular file of exactly the size that the recording states; links are not followed.
 *
 * @param size  size in bytes
 * @param crc   CRC-32 of the file's bytes in hexadecimal; empty if unknown
 * @param field the JSON member that names the file, for error messages; null for a file that write() wrote
 */
public record RecordedFile(Path path, int size, String crc, Json field) {
    /** Limit of the size that a recording may state for a file, in bytes. */
    public static final int MOST_BYTES = 1 << 30;
    private static final Pattern PLAIN_NAME = Pattern.compile("[A-Za-z0-9_][A-Za-z0-9_.-]{0,99}");

    /** Returns the file in `folder` whose name is the text of `field`. Does not open the file. */
    public static RecordedFile named(Path folder, Json field, int size, String crc) throws MistakeException {
        if (!isPlain(field.string())) {
            throw field.needs("the name of a file in the recording's folder");
        }
        return new RecordedFile(folder.resolve(field.string()), size, crc, field);
    }

    /**
     * Whether a file's name is plain, without folders: 1 to 100 ASCII letters, digits, underscores, dots
     * and hyphens, not starting with a dot or a hyphen.
     */
    public static boolean isPlain(String name) {
        return PLAIN_NAME.matcher(name).matches();
    }

    /** Writes a file and returns it, with its checksum. */
    public static RecordedFile write(Path file, byte[] bytes) throws IOException {
        Files.write(file, bytes);
        return new RecordedFile(file, bytes.length, crc(bytes), null);
    }

    private static String crc(byte[] bytes) {
        CRC32 check = new CRC32();
        check.update(bytes);
        return "%08x".formatted(check.getValue());
    }

    /** Whether this is a regular file, not a link. */
    public static boolean isRegular(Path file) {
        return Files.isRegularFile(file, LinkOption.NOFOLLOW_LINKS);
    }

    /** Throws unless this is a regular file of the stated size. */
    public void check() throws MistakeException {
        try {
            BasicFileAttributes found = Files.readAttributes(
                    path, BasicFileAttributes.class, LinkOption.NOFOLLOW_LINKS);
            if (!found.isRegularFile()) {
                throw field.error(path + ": expected a regular file, found " + kind(found));
            }
            if (found.size() != size) {
                throw field.error(path + " is cut or damaged; expected " + size + " bytes, found " + found
                        .size());
            }
        } catch (NoSuchFileException e) {
            throw field.error(path + ": no such file");
        } catch (IOException e) {
            throw field.error(path + ": can't be read: " + e.getMessage());
        }
    }

    private static String kind(BasicFileAttributes found) {
        return found.isSymbolicLink() ? "a link" : found.isDirectory() ? "a folder" : "a special file";
    }

    /** Checks the file's size and, if it is known, the checksum. Returns the file's bytes. */
    public byte[] bytes() throws MistakeException {
        check();
        byte[] bytes = new byte[size];
        try {
            read(path, ByteBuffer.wrap(bytes));
        } catch (IOException e) {
            throw field.error(path + ": can't be read");
        }
        String found = crc.isEmpty() ? "" : crc(bytes);
        if (!found.equals(crc)) {
            throw field.error(path + " is cut or damaged; expected the CRC " + crc + ", found " + found);
        }
        return bytes;
    }

    /**
     * Fills the buffer from the start of a file, which must not be a link. If the file is shorter than the
     * buffer, the rest of the buffer is unchanged.
     */
    public static void read(Path file, ByteBuffer to) throws IOException {
        try (FileChannel channel = FileChannel.open(
                file, StandardOpenOption.READ, LinkOption.NOFOLLOW_LINKS)) {
            while (to.hasRemaining() && channel.read(to) >= 0) {
                continue;
            }
        }
    }
}
