package com.orlu.orlu3rdalgoservice.tool.importer;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/** What an import drops or reads in a way that may surprise, each with where and why, a line each. */
final class Notes {
    private final List<String> mLines = new ArrayList<>();
    private Path mFile;

    /** The file that the next notes are about. */
    void begin(Path file) {
        mFile = file;
    }

    void add(String place, String problem) {
        String line = mFile + ": " + (place.isEmpty() ? "" : place + ": ") + problem;
        mLines.add(line.replaceAll("\\p{Cntrl}", "?"));
    }

    List<String> lines() {
        return mLines;
    }
}
