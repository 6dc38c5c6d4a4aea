package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/** What an import drops, or reads in a way that may surprise: a line each, with the place and the reason. */
public final class Notes {
    private static final int MOST = 1000;

    private final List<String> mLines = new ArrayList<>();
    private Path mFile;
    private int mCount;

    /** Begins the notes about a file. */
    void begin(Path file) {
        mFile = file;
    }

    void add(String place, String problem) {
        if (++mCount <= MOST) {
            mLines.add(Printable.line(mFile + ": " + (place.isEmpty() ? "" : place + ": ") + problem));
        }
    }

    public int count() {
        return mCount;
    }

    /** The first notes, and how many more there are. */
    public List<String> lines() {
        List<String> lines = new ArrayList<>(mLines);
        if (mCount > MOST) {
            lines.add("and " + (mCount - MOST) + " more notes");
        }
        return lines;
    }
}
