package com.orlu.orlu3rdalgoservice.tool.run;

import com.sun.management.ThreadMXBean;

import java.io.IOException;
import java.lang.management.ManagementFactory;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Supplier;

/** Times the stages of a run. */
public final class Stopwatch {
    private final List<Stage> mStages = new ArrayList<>();
    private final List<Mark> mMarks = new ArrayList<>();
    private final boolean mIsMarking;

    /** A stage's name, and its start and end by System.nanoTime(). */
    public record Stage(String name, long start, long end) {
    }

    /**
     * The start of a stage of a run, with counters of the thread that runs the stage.
     *
     * @param tid       the kernel's id of the thread
     * @param time      when the stage started, by System.nanoTime()
     * @param faults    page faults of the thread so far; 0 if unknown
     * @param allocated bytes that the thread has allocated on Java's heap so far
     */
    public record Mark(String stage, int tid, long time, long faults, long allocated) {
        /** The stage that the probe's events divide into parts. */
        public static final String PROCESS_IMAGE = "processImage";
        // Indices of fields in /proc/PID/stat. The field after the command's name has index 0, because the
        // name may contain blanks.
        private static final int MINOR_FAULTS = 7;
        private static final int MAJOR_FAULTS = 9;

        static Mark now(String stage) {
            ThreadMXBean thread = (ThreadMXBean) ManagementFactory.getThreadMXBean();
            return new Mark(stage, EventLog.thisThread(), System.nanoTime(), pageFaults(),
                    thread.getCurrentThreadAllocatedBytes());
        }

        private static long pageFaults() {
            try {
                String stat = Files.readString(Path.of("/proc/thread-self/stat"));
                String[] fields = stat.substring(stat.lastIndexOf(')') + 2).split(" ");
                return Long.parseLong(fields[MINOR_FAULTS]) + Long.parseLong(fields[MAJOR_FAULTS]);
            } catch (IOException e) {
                return 0;
            }
        }
    }

    public Stopwatch() {
        this(false);
    }

    /** Without `isMarking`, mark() has no effect. */
    public Stopwatch(boolean isMarking) {
        mIsMarking = isMarking;
    }

    /** Marks the start of a stage, which ends at the next mark and may contain calls of time(). */
    public void mark(String stage) {
        if (mIsMarking) {
            mMarks.add(Mark.now(stage));
        }
    }

    /** The marks in the order of execution; none without `isMarking`. */
    public List<Mark> marks() {
        return mMarks;
    }

    /** Runs the work, records its duration as this stage, and returns its result. */
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
