package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.text.Printable;

/**
 * Shows the progress of long work on standard error, in one line that each update overwrites. Shows nothing
 * without the property orlu.terminal, which contains the terminal's number of columns. Thread-safe.
 */
public final class Progress {
    private static final int COLUMNS = Integer.getInteger("orlu.terminal", 0);
    private static final long FIRST_NANOSECONDS = 500_000_000L;
    private static final long PAUSE_NANOSECONDS = 50_000_000L;
    /** Time before the first estimate of the time left: until then, too few steps are done. */
    private static final double LEAST_ESTIMATED_SECONDS = 1;
    private static final double NANOSECONDS = 1e9;
    private static final String CLEAR_LINE = "\r\033[K";

    private static long sNext = System.nanoTime() + FIRST_NANOSECONDS;
    private static String sWork = "";
    private static long sWorkStart;
    private static boolean sShown;

    private Progress() {}

    /** Shows the present activity. Call this before each activity. */
    public static synchronized void show(String line) {
        long now = System.nanoTime();
        if (COLUMNS == 0 || now < sNext) {
            return;
        }
        sNext = now + PAUSE_NANOSECONDS;
        // Shortens the line, because a wrapped line could not be cleared.
        String shown = Printable.line(line);
        System.err.print(CLEAR_LINE + shown.substring(0, Math.min(shown.length(), COLUMNS - 1)));
        System.err.flush();
        sShown = true;
    }

    /** Shows the work, how many steps are done, and an estimate of the time left. */
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

    /** Clears the line after the present work. Call this before printing anything else. */
    public static synchronized void end() {
        sNext = System.nanoTime() + FIRST_NANOSECONDS;
        sWork = "";
        pause();
    }

    /** Clears the line, so that something else can be printed during the present work. */
    public static synchronized void pause() {
        if (sShown) {
            System.err.print(CLEAR_LINE);
            System.err.flush();
            sShown = false;
        }
    }
}
