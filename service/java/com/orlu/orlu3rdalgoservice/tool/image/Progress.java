package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.text.Printable;

/**
 * Shows on standard error how far long work is, in one line that is rewritten; nothing when that is no
 * terminal, which the property orlu.terminal says. Any thread may report.
 */
public final class Progress {
    private static final boolean TERMINAL = Boolean.getBoolean("orlu.terminal");
    private static final long FIRST_NANOSECONDS = 500_000_000L;
    private static final long PAUSE_NANOSECONDS = 50_000_000L;
    /** Before that, the first steps tell little of the others. */
    private static final double LEAST_ESTIMATED_SECONDS = 1;
    private static final double NANOSECONDS = 1e9;
    private static final String CLEAR_LINE = "\r\033[K";

    private static long sNext = System.nanoTime() + FIRST_NANOSECONDS;
    private static String sWork = "";
    private static long sWorkStart;
    private static boolean sShown;

    private Progress() {}

    /** Says what is being done now. To be called before each piece of it. */
    public static synchronized void show(String line) {
        long now = System.nanoTime();
        if (!TERMINAL || now < sNext) {
            return;
        }
        sNext = now + PAUSE_NANOSECONDS;
        System.err.print(CLEAR_LINE + Printable.line(line));
        System.err.flush();
        sShown = true;
    }

    /** Says what is being done, how many steps of it are done, and how long the others may take. */
    public static synchronized void show(String work, int done, int steps) {
        long now = System.nanoTime();
        if (!work.equals(sWork) || done == 0) {
            sWork = work;
            sWorkStart = now;
        }
        double seconds = (now - sWorkStart) / NANOSECONDS;
        show("%s: %d of %d done%s".formatted(work, done, steps,
                done == 0 || seconds < LEAST_ESTIMATED_SECONDS ? ""
                        : ", %.0f s left".formatted(Math.ceil(seconds * (steps - done) / done))));
    }

    /** Clears the line on a terminal. To be called when a request ends, before anything else is printed. */
    public static synchronized void end() {
        sNext = System.nanoTime() + FIRST_NANOSECONDS;
        sWork = "";
        pause();
    }

    /** Clears the line so that something else can be printed before the work goes on. */
    public static synchronized void pause() {
        if (sShown) {
            System.err.print(CLEAR_LINE);
            System.err.flush();
            sShown = false;
        }
    }
}
