package com.orlu.orlu3rdalgoservice.tool.request;

import java.util.ArrayList;
import java.util.Comparator;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Set;

/**
 * All that is wrong with one file, and what seems so. Reading goes on behind a mistake with some other value,
 * and what was read is thrown away in the end.
 */
public final class Mistakes {
    private static final int MOST_KEPT = 1000;
    private static final int MOST_PRINTED = 100;

    private final String mFile;
    private final Set<Mistake> mMistakes = new LinkedHashSet<>();
    private long mDropped;
    private int mErrors;

    /** Something that is read, or fails. */
    interface Reading<T> {
        T read() throws RequestFileException;
    }

    /** Something that is checked, or fails. */
    public interface Check {
        void run() throws RequestFileException;
    }

    public Mistakes(String file) {
        mFile = file;
    }

    String file() {
        return mFile;
    }

    /** Adds one, unless it is there already: what all frames have in common is read for each of them. */
    void add(Mistake mistake) {
        if (mMistakes.size() == MOST_KEPT) {
            ++mDropped;
        } else if (mMistakes.add(mistake) && !mistake.isWarning()) {
            ++mErrors;
        }
    }

    /** Adds what a method made to be thrown, so that the rest is read. */
    void add(RequestFileException e) {
        add(e.mistake());
    }

    void add(int line, int column, String field, String problem) {
        add(new Mistake(mFile, line, column, field, problem, false));
    }

    /** What is read, or the fallback when that fails, which is noted. */
    <T> T attempt(Reading<T> reading, T fallback) {
        try {
            return reading.read();
        } catch (RequestFileException e) {
            add(e.mistake());
            return fallback;
        }
    }

    /** Runs a check, and notes what it throws. */
    public void attempt(Check check) {
        attempt(() -> {
            check.run();
            return null;
        }, null);
    }

    /** Adds a note to the text of every mistake behind the first so many. */
    void annotate(int first, String note) {
        List<Mistake> all = new ArrayList<>(mMistakes);
        all.subList(first, all.size()).replaceAll(mistake -> mistake.withNote(note));
        mMistakes.clear();
        mMistakes.addAll(all);
    }

    /** How many were kept so far, warnings among them. */
    int size() {
        return mMistakes.size();
    }

    /** How many of them keep the file from being taken. */
    public int errors() {
        return mErrors;
    }

    /** Whether there are more than are kept and counted. */
    public boolean areMore() {
        return mDropped > 0;
    }

    public int warnings() {
        return mMistakes.size() - mErrors;
    }

    /** Throws the first mistake, in the file's order. */
    void throwFirst() throws RequestFileException {
        for (Mistake mistake : sorted()) {
            if (!mistake.isWarning()) {
                throw new RequestFileException(mistake);
            }
        }
    }

    private List<Mistake> sorted() {
        List<Mistake> sorted = new ArrayList<>(mMistakes);
        sorted.sort(Comparator.comparingInt(Mistake::line).thenComparingInt(Mistake::column));
        return sorted;
    }

    /** A line for each, in the file's order; of very many the first ones, and how many there are more. */
    public List<String> lines() {
        List<String> lines = new ArrayList<>();
        sorted().stream().limit(MOST_PRINTED).forEach(mistake -> lines.add(mistake.text()));
        if (mMistakes.size() > MOST_PRINTED) {
            lines.add(mFile + ": and " + (mDropped > 0 ? "over " : "") + (mMistakes.size() - MOST_PRINTED)
                    + " more");
        }
        return lines;
    }
}
