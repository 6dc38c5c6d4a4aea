package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/**
 * Notes on data that an import drops or reads in an unexpected way. Each note is one line with the place and
 * the reason.
 */
public final class Notes {
    private static final int MOST = 1000;

    private final List<String> mLines = new ArrayList<>();
    private Path mFile;
    private int mCount;

    /** Starts the notes about a file. */
    void begin(Path file) {
        mFile = file;
    }

    /** Adds a note. `place` is a line (":12"), a field, or empty. */
    void add(String place, String problem) {
        if (++mCount <= MOST) {
            mLines.add(Printable.line(mFile + (place.startsWith(":") ? place + ": note: "
                    : ": note: " + (place.isEmpty() ? "" : place + ": ")) + problem));
        }
    }

    public int count() {
        return mCount;
    }

    /** Returns the first MOST notes. If there are more, adds a line with the number of further notes. */
    public List<String> lines() {
        List<String> lines = new ArrayList<>(mLines);
        if (mCount > MOST) {
            lines.add("and " + (mCount - MOST) + " more notes");
        }
        return lines;
    }
}
