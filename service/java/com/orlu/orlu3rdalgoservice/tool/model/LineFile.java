package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.io.RandomAccessFile;
import java.nio.charset.StandardCharsets;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Predicate;

/** Reads a file of JSON lines that others are still appending to. */
public final class LineFile {
    private final Path mFile;
    private final Predicate<String> mWanted;
    private long mRead;

    /** Whether a line of the events is no look-up of a tag, of which there are as many as of all others. */
    public static boolean isNoLookup(String line) {
        return !line.contains("\"event\":\"lookup\"");
    }

    /** A reader from the file's present end on. The file may not be there yet; null for none. */
    public LineFile(Path file, Predicate<String> wanted) {
        mFile = file;
        mWanted = wanted;
        mRead = file == null ? 0 : file.toFile().length();
    }

    /** A reader of what is there already, and of what follows. */
    public static LineFile fromStart(Path file, Predicate<String> wanted) {
        LineFile lines = new LineFile(file, wanted);
        lines.mRead = 0;
        return lines;
    }

    /**
     * The wanted lines that came since the last call. Only whole lines count: what is still being written is
     * left for the next time. A line that is no JSON object is an IllegalStateException.
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
            throw new IllegalStateException(mFile + " has an odd line: " + line, e);
        }
    }

    private List<String> newLines() throws IOException {
        if (mFile == null || !mFile.toFile().isFile()) {
            return List.of();
        }
        try (RandomAccessFile file = new RandomAccessFile(mFile.toFile(), "r")) {
            byte[] bytes = new byte[Math.toIntExact(Math.max(0, file.length() - mRead))];
            file.seek(mRead);
            file.readFully(bytes);
            int whole = bytes.length;
            while (whole > 0 && bytes[whole - 1] != '\n') {
                --whole;
            }
            mRead += whole;
            return new String(bytes, 0, whole, StandardCharsets.UTF_8).lines().toList();
        }
    }
}
