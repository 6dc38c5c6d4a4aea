package com.orlu.orlu3rdalgoservice.tool.cli;

import java.io.IOException;
import java.io.Reader;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.HashMap;
import java.util.Map;
import java.util.regex.Pattern;

/**
 * Refuses what options ask to be written where that can't be or must not, before anything runs: a run may
 * take long, and "--json samples/night.json" without a file's name between them would cost the request.
 */
final class WrittenFiles {
    private static final Pattern REQUEST = Pattern.compile("\"request\"\\s*:\\s*\\{");
    private static final int HEAD = 64 << 10;

    private final Map<Path, String> mFiles = new HashMap<>();

    /** Adds an option's file, which may be null; an IllegalArgumentException when it can't be written. */
    WrittenFiles file(String option, Path file) {
        if (file == null) {
            return this;
        }
        Path whole = file.toAbsolutePath().normalize();
        String other = mFiles.put(whole, option);
        if (other != null) {
            throw new IllegalArgumentException(other + " and " + option + " name the same file: " + file);
        }
        if (Files.isDirectory(file)) {
            throw new IllegalArgumentException(option + ": needs a file, found a folder: " + file);
        }
        if (!Files.isDirectory(whole.getParent())) {
            throw new IllegalArgumentException(option + ": no such folder: " + file.getParent());
        }
        if (Files.isRegularFile(file) && isRequest(file)) {
            throw new IllegalArgumentException(option + " would write over a request file: " + file);
        }
        return this;
    }

    /** Adds an option's folder, which may be null and need not be there yet. */
    WrittenFiles folder(String option, Path folder) {
        if (folder != null && Files.exists(folder) && !Files.isDirectory(folder)) {
            throw new IllegalArgumentException(option + ": needs a folder, found a file: " + folder);
        }
        return this;
    }

    private static boolean isRequest(Path file) {
        char[] head = new char[HEAD];
        // Bytes that are no text are no mistake here.
        try (Reader reader = Files.newBufferedReader(file, StandardCharsets.ISO_8859_1)) {
            int length = reader.read(head);
            return length > 0 && REQUEST.matcher(new String(head, 0, length)).find();
        } catch (IOException e) {
            return false;
        }
    }
}
