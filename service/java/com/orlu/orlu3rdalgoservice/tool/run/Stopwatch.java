package com.orlu.orlu3rdalgoservice.tool.run;

import java.util.ArrayList;
import java.util.List;
import java.util.function.Supplier;

/** How long each stage of a request took. */
public final class Stopwatch {
    private final List<Stage> mStages = new ArrayList<>();

    /** A stage's name, and when it began and ended by System.nanoTime(). */
    public record Stage(String name, long start, long end) {
    }

    /** Does the work and keeps its time under the stage's name. */
    public <T> T time(String stage, Supplier<T> work) {
        long start = System.nanoTime();
        T result = work.get();
        mStages.add(new Stage(stage, start, System.nanoTime()));
        return result;
    }

    /** The stages in the order of the work. */
    public List<Stage> stages() {
        return mStages;
    }
}
