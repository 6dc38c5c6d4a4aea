package com.orlu.orlu3rdalgoservice.tool.run;

import java.util.ArrayList;
import java.util.List;
import java.util.function.Supplier;

/** The duration of each stage of a request. */
public final class Stopwatch {
    private final List<Stage> mStages = new ArrayList<>();
    private final List<StageMark> mMarks = new ArrayList<>();
    private final boolean mIsMarking;

    /** A stage's name, and its begin and end by System.nanoTime(). */
    public record Stage(String name, long start, long end) {
    }

    public Stopwatch() {
        this(false);
    }

    /** With `isMarking`, mark() has an effect. */
    public Stopwatch(boolean isMarking) {
        mIsMarking = isMarking;
    }

    /** Marks the begin of a larger stage, which ends where the next one begins. */
    public void mark(String stage) {
        if (mIsMarking) {
            mMarks.add(StageMark.now(stage));
        }
    }

    /** The marks in the order of execution; none unless marking. */
    public List<StageMark> marks() {
        return mMarks;
    }

    /** Runs the work and records its time as this stage. */
    public <T> T time(String stage, Supplier<T> work) {
        long start = System.nanoTime();
        T result = work.get();
        mStages.add(new Stage(stage, start, System.nanoTime()));
        return result;
    }

    /** The stages in the order of execution. */
    public List<Stage> stages() {
        return mStages;
    }
}
