package com.orlu.fuzz.readers;

import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.PrintStream;
import java.lang.management.ManagementFactory;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.function.IntSupplier;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * How a command ended.
 *
 * @param status  its exit status; -1 if it threw or hung
 * @param printed its output on both streams
 * @param problem its fault, in the same words for all mutants that cause this fault; empty if there is none
 */
record Outcome(int status, String printed, String problem) {
    private static final int MOST_STATUS = 2;
    private static final long MOST_BYTES = 1L << 30;
    private static final Pattern CONTROL = Pattern.compile(
            "[\\x00-\\x08\\x0b-\\x1f\\x7f-\\x9f\\u061c\\u200e\\u200f\\u2028-\\u202e\\u2066-\\u2069]");
    private static final Pattern STACK =
            Pattern.compile("(?m)^\\s*at [\\w.$]+\\(|\\b[A-Z]\\w+(?:Exception|Error)\\b");
    // A line without a message: it ends, or only "null" follows, after a file name, a line number or one of
    // these words. Excludes a line whose message starts on the next line, indented by five spaces.
    private static final Pattern EMPTY =
            Pattern.compile("(?m)(?:^run|:\\d+|\\w\\.[a-z]\\w*|damaged|read|error|warning|note): ?"
                    + "(?:null)?$(?!\\n {5})");

    /** Limits of a command: processor time of its thread, and time after which it counts as hanging. */
    record Time(long cpuMilliseconds, long milliseconds) {
        static final Time USUAL = new Time(5000, 60_000);
    }

    /** Runs a command in this VM on its own thread, which is left running if the command hangs. */
    static Outcome of(IntSupplier command, Time most) {
        ByteArrayOutputStream bytes = new ByteArrayOutputStream();
        int[] status = {-1};
        long[] nanoseconds = {0};
        Throwable[] thrown = {null};
        Thread thread = new Thread(() -> {
            try {
                status[0] = command.getAsInt();
            } catch (RuntimeException | Error e) {
                thrown[0] = e;
            }
            nanoseconds[0] = ManagementFactory.getThreadMXBean().getCurrentThreadCpuTime();
        });
        thread.setDaemon(true);
        PrintStream usualOut = System.out;
        PrintStream usualErr = System.err;
        PrintStream to = new PrintStream(bytes, true, StandardCharsets.UTF_8);
        long before = resetPeak();
        System.setOut(to);
        System.setErr(to);
        try {
            thread.start();
            thread.join(most.milliseconds());
        } catch (InterruptedException e) {
            throw new IllegalStateException(e);
        } finally {
            System.setOut(usualOut);
            System.setErr(usualErr);
        }
        String printed = bytes.toString(StandardCharsets.UTF_8);
        String problem = "";
        if (thread.isAlive()) {
            problem = "hangs" + place(thread.getStackTrace());
        } else if (thrown[0] != null) {
            problem = "throws " + thrown[0].getClass().getName() + place(thrown[0].getStackTrace());
        } else if (nanoseconds[0] > most.cpuMilliseconds() * 1_000_000L) {
            problem = "takes too long";
        } else if (peak() - before > MOST_BYTES) {
            problem = "takes over 1 GB";
        } else {
            problem = problem(status[0], printed);
        }
        return new Outcome(status[0], printed, problem);
    }

    // Returns the innermost place in the command's own code.
    private static String place(StackTraceElement[] stack) {
        for (StackTraceElement element : stack) {
            if (element.getClassName().startsWith("com.orlu.")) {
                return " in " + element.getClassName() + "." + element.getMethodName();
            }
        }
        return "";
    }

    private static String problem(int status, String printed) {
        if (status < 0 || status > MOST_STATUS) {
            return "status " + status;
        }
        if (status != 0 && printed.isBlank()) {
            return "status " + status + " and no message";
        }
        if (printed.contains("out of memory")) {
            return "out of memory";
        }
        for (Pattern wrong : List.of(CONTROL, STACK, EMPTY)) {
            Matcher found = wrong.matcher(printed);
            if (found.find()) {
                int from = Math.max(0, found.start() - 50);
                return "prints " + printed.substring(from, Math.min(printed.length(), found.end() + 30))
                        .replaceAll("\\d+", "N").replaceAll("[^ -~]", "?");
            }
        }
        return "";
    }

    private static long resetPeak() {
        try {
            Files.writeString(Path.of("/proc/self/clear_refs"), "5");
            return peak();
        } catch (IOException e) {
            throw new IllegalStateException("can't reset the memory peak", e);
        }
    }

    /** Returns the largest resident set since the last reset, in bytes. */
    private static long peak() {
        try {
            String status = Files.readString(Path.of("/proc/self/status"), StandardCharsets.ISO_8859_1);
            Matcher found = Pattern.compile("VmHWM:\\s*(\\d+) kB").matcher(status);
            if (found.find()) {
                return Long.parseLong(found.group(1)) << 10;
            }
        } catch (IOException e) {
            throw new IllegalStateException(e);
        }
        throw new IllegalStateException("/proc/self/status has no VmHWM");
    }
}
