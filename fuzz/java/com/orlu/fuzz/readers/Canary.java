package com.orlu.fuzz.readers;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.LinkOption;
import java.nio.file.Path;
import java.nio.file.attribute.BasicFileAttributeView;
import java.nio.file.attribute.BasicFileAttributes;
import java.nio.file.attribute.FileTime;
import java.time.Instant;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.TreeMap;
import java.util.TreeSet;
import java.util.stream.Stream;

/**
 * Detects whether a command reads or writes files outside its folder. Watches the access time of a file
 * beside the folder, and compares the surrounding files and the input files before and after the command.
 */
final class Canary {
    private static final String SECRET = "the canary's own text";

    private final Path mAround;
    private final Path mBox;
    private Map<String, String> mBefore = Map.of();

    /** Creates the watched file in `around`. Commands may write only in `box`, a folder in `around`. */
    Canary(Path around, Path box) throws IOException {
        mAround = around;
        mBox = box;
        Files.writeString(file(), SECRET);
    }

    Path file() {
        return mAround.resolve("canary");
    }

    /** Starts watching. The folder `in` and its files must stay unchanged. */
    void arm(Path in) throws IOException {
        // A file system may update the access time only if it is older than the modification time.
        Files.getFileAttributeView(file(), BasicFileAttributeView.class)
                .setTimes(FileTime.from(Instant.now()), FileTime.fromMillis(0), null);
        mBefore = files(in);
    }

    /** Describes an illegal read or write since arm(), or returns "". With mayRead, reads are legal. */
    String problem(Path in, Path out, String printed, boolean mayRead) throws IOException {
        Map<String, String> now = files(in);
        if (!mBefore.equals(now)) {
            Set<String> changed = new TreeSet<>(now.keySet());
            changed.addAll(mBefore.keySet());
            changed.removeIf(file -> Objects.equals(now.get(file), mBefore.get(file)));
            return "writes outside of the output folder: " + changed;
        }
        if (mayRead) {
            return "";
        }
        if (printed.contains(SECRET)) {
            return "prints a file outside of the folder";
        }
        for (Path file : Files.isDirectory(out) ? Mutator.files(out) : List.<Path>of()) {
            if (Files.readString(file, StandardCharsets.ISO_8859_1).contains(SECRET)) {
                return "copies a file outside of the folder";
            }
        }
        FileTime read = Files.readAttributes(file(), BasicFileAttributes.class).lastAccessTime();
        return read.toMillis() == 0 ? "" : "reads a file outside of the folder";
    }

    // Returns the files around the box and those in `in`, with their sizes and modification times.
    private Map<String, String> files(Path in) throws IOException {
        Map<String, String> files = new TreeMap<>();
        for (Path folder : new Path[] {mAround, in}) {
            try (Stream<Path> all = Files.walk(folder)) {
                for (Path file : all.toList()) {
                    if (!file.equals(mAround) && (file.startsWith(in) || !file.startsWith(mBox))) {
                        BasicFileAttributes found = Files.readAttributes(
                                file, BasicFileAttributes.class, LinkOption.NOFOLLOW_LINKS);
                        files.put(mAround.relativize(file).toString(), found.isDirectory() ? "folder"
                                : found.size() + " " + found.lastModifiedTime());
                    }
                }
            }
        }
        return files;
    }
}
