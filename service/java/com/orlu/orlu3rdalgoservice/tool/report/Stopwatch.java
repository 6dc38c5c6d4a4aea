package com.orlu.orlu3rdalgoservice.tool.report;

import java.util.LinkedHashMap;
import java.util.Map;
import java.util.function.Supplier;

/** How long each stage of a request took. */
public final class Stopwatch {
    private static final double NANOSECONDS_PER_MILLISECOND = 1e6;

    private final Map<String, Double> mStages = new LinkedHashMap<>();

    /** Does the work and keeps its time under the stage's name. */
    public <T> T time(String stage, Supplier<T> work) {
        long start = System.nanoTime();
        T result = work.get();
        mStages.put(stage, (System.nanoTime() - start) / NANOSECONDS_PER_MILLISECOND);
        return result;
    }

    /** Milliseconds by stage, in the order of the work. */
    Map<String, Double> stages() {
        return mStages;
    }
}
