package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Predicate;

/** Reads a file of JSON lines while others append to it. */
public final class LineFile {
    private final Path mFile;
    private final Predicate<String> mWanted;
    private long mRead;

    /** Returns false for the event line of a tag look-up. About half of all events are look-ups. */
    public static boolean isNoLookup(String line) {
        return !line.contains("\"event\":\"lookup\"");
    }

    /** Reads lines that are appended from now on. The file need not exist yet. A null file has no lines. */
    public LineFile(Path file, Predicate<String> wanted) {
        mFile = file;
        mWanted = wanted;
        mRead = file == null ? 0 : file.toFile().length();
    }

    /** Reads the existing lines, and lines appended later. */
    public static LineFile fromStart(Path file, Predicate<String> wanted) {
        LineFile lines = new LineFile(file, wanted);
        lines.mRead = 0;
        return lines;
    }

    /**
     * Returns the wanted lines added since the last call. Leaves an incomplete last line for the next call.
     * Throws IllegalStateException if a line is not a JSON object.
     */
    public List<Json> next() throws IOException {
        List<Json> objects = new ArrayList<>();
        for (String line : newLines()) {
            if (mWanted.test(line)) {
                objects.add(parse(line));
            }
        }
        return objects;
    }

    private Json parse(String line) {
        try {
            Json object = Json.parse(mFile.toString(), 0, line);
            object.members();
            return object;
        } catch (MistakeException e) {
            throw new IllegalStateException(mFile + " has an invalid line: " + line, e);
        }
    }

    private List<String> newLines() throws IOException {
        if (mFile == null || !mFile.toFile().isFile()) {
            return List.of();
        }
        try (InputStream file = Files.newInputStream(mFile)) {
            file.skip(mRead);
            byte[] bytes = file.readAllBytes();
            int whole = bytes.length;
            while (whole > 0 && bytes[whole - 1] != '\n') {
                --whole;
            }
            mRead += whole;
            return new String(bytes, 0, whole, StandardCharsets.UTF_8).lines().toList();
        }
    }
}
