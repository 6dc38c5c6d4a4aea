package com.orlu.orlu3rdalgoservice.tool.text;

import java.util.ArrayList;
import java.util.Comparator;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Set;

/**
 * The errors and warnings of one file. After an error, the reader continues with a fallback value to find
 * more errors; in the end it discards everything read.
 */
public final class Mistakes {
    /** Limit for the errors, and separately for the warnings, so that warnings never displace errors. */
    private static final int MOST_KEPT = 1000;
    private static final int MOST_PRINTED = 100;

    private static final Comparator<Mistake> BY_PLACE =
            Comparator.comparingInt(Mistake::line).thenComparingInt(Mistake::column);

    private final String mFile;
    private final Set<Mistake> mMistakes = new LinkedHashSet<>();
    private boolean mAreMore;
    private int mErrors;

    /** A read operation that may fail. */
    public interface Reading<T> {
        T read() throws MistakeException;
    }

    /** A check that may fail. */
    public interface Check {
        void run() throws MistakeException;
    }

    public Mistakes(String file) {
        mFile = file;
    }

    public String file() {
        return mFile;
    }

    /**
     * Adds a mistake unless it was added before: values common to all frames are read again for each frame.
     * Drops the mistake if the limit is reached.
     */
    public void add(Mistake mistake) {
        if (mMistakes.contains(mistake)) {
            return;
        }
        if ((mistake.isWarning() ? warnings() : mErrors) == MOST_KEPT) {
            mAreMore = true;
            return;
        }
        mMistakes.add(mistake);
        mErrors += mistake.isWarning() ? 0 : 1;
    }

    /** Adds the mistake of an exception instead of throwing it, so that reading continues. */
    public void add(MistakeException e) {
        add(e.mistake());
    }

    /** Returns a mistake of this file without adding it. */
    public Mistake at(int line, int column, String field, String problem, boolean isWarning) {
        return new Mistake(mFile, line, column, field, problem, isWarning);
    }

    public void add(int line, int column, String field, String problem) {
        add(at(line, column, field, problem, false));
    }

    /** Returns the result of `reading`. If it throws a mistake, adds the mistake and returns `fallback`. */
    public <T> T attempt(Reading<T> reading, T fallback) {
        try {
            return reading.read();
        } catch (MistakeException e) {
            add(e.mistake());
            return fallback;
        }
    }

    /** Runs a check and adds the mistake that it throws. */
    public void attempt(Check check) {
        attempt(() -> {
            check.run();
            return null;
        }, null);
    }

    /** Appends a note to each mistake from index `first` on, in the order of adding. */
    public void annotate(int first, String note) {
        List<Mistake> all = new ArrayList<>(mMistakes);
        all.subList(first, all.size()).replaceAll(mistake -> mistake.withNote(note));
        mMistakes.clear();
        mMistakes.addAll(all);
    }

    /** Returns the number of mistakes kept so far, including warnings. */
    public int size() {
        return mMistakes.size();
    }

    /** Returns the number of errors kept. It is 0 only if no error was added. */
    public int errors() {
        return mErrors;
    }

    /** Returns whether mistakes were dropped because there were too many. */
    public boolean areMore() {
        return mAreMore;
    }

    public int warnings() {
        return mMistakes.size() - mErrors;
    }

    /** Throws the first error in the order of the file, if there is any. */
    public void throwFirst() throws MistakeException {
        for (Mistake mistake : sorted()) {
            if (!mistake.isWarning()) {
                throw new MistakeException(mistake);
            }
        }
    }

    private List<Mistake> sorted() {
        List<Mistake> sorted = new ArrayList<>(mMistakes);
        sorted.sort(BY_PLACE);
        return sorted;
    }

    /**
     * Returns one line per mistake, sorted by place. If there are more than MOST_PRINTED mistakes, omits
     * warnings before errors, and appends a line with the number of omitted mistakes.
     */
    public List<String> lines() {
        List<String> lines = new ArrayList<>();
        sorted().stream().sorted(Comparator.comparing(Mistake::isWarning)).limit(MOST_PRINTED)
                .sorted(BY_PLACE).forEach(mistake -> lines.add(mistake.text()));
        if (mMistakes.size() > MOST_PRINTED) {
            lines.add(mFile + ": and " + (mAreMore ? "over " : "") + (mMistakes.size() - MOST_PRINTED)
                    + " more");
        }
        return lines;
    }
}
