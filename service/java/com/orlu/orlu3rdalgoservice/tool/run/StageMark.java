package com.orlu.orlu3rdalgoservice.tool.run;

import com.sun.management.ThreadMXBean;

import java.io.IOException;
import java.lang.management.ManagementFactory;
import java.nio.file.Files;
import java.nio.file.Path;

/**
 * The begin of a stage of a run, with the counters of its thread.
 *
 * @param tid       the kernel's id of the thread
 * @param time      by System.nanoTime()
 * @param faults    page faults of the thread so far; 0 if unknown
 * @param allocated bytes that the thread has allocated on Java's heap so far
 */
public record StageMark(String stage, int tid, long time, long faults, long allocated) {
    /** The stage that the probe's events divide. */
    public static final String PROCESS_IMAGE = "processImage";
    // Fields of /proc/PID/stat behind the command's name, which may contain blanks.
    private static final int MINOR_FAULTS = 7;
    private static final int MAJOR_FAULTS = 9;

    /** Marks the begin of a stage on the calling thread. */
    static StageMark now(String stage) {
        ThreadMXBean thread = (ThreadMXBean) ManagementFactory.getThreadMXBean();
        return new StageMark(stage, EventLog.thisThread(), System.nanoTime(), pageFaults(),
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
