package com.orlu.orlu3rdalgoservice.tool.image;

/**
 * Shows on standard error how far work is that takes longer than a moment: on a terminal in one line, which
 * is rewritten; elsewhere in a line every ten seconds. The property orlu.terminal says which it is.
 */
public final class Progress {
    private static final boolean TERMINAL = Boolean.getBoolean("orlu.terminal");
    private static final long FIRST_NANOSECONDS = 500_000_000L;
    private static final long PAUSE_NANOSECONDS = TERMINAL ? 50_000_000L : 10_000_000_000L;
    private static final String CLEAR_LINE = "\r\033[K";

    private static long sNext = firstLine();
    private static boolean sShown;

    private Progress() {}

    /** Says what is being done now, and how far it is. To be called before each piece of it. */
    public static void show(String line) {
        long now = System.nanoTime();
        if (now < sNext) {
            return;
        }
        sNext = now + PAUSE_NANOSECONDS;
        if (TERMINAL) {
            System.err.print(CLEAR_LINE + line);
            System.err.flush();
            sShown = true;
        } else {
            System.err.println(line);
        }
    }

    /** Clears the line on a terminal. To be called when a request ends, before anything else is printed. */
    public static void end() {
        sNext = firstLine();
        if (sShown) {
            System.err.print(CLEAR_LINE);
            System.err.flush();
            sShown = false;
        }
    }

    private static long firstLine() {
        return System.nanoTime() + (TERMINAL ? FIRST_NANOSECONDS : PAUSE_NANOSECONDS);
    }
}
