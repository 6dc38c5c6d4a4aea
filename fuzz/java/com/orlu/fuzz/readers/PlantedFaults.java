package com.orlu.fuzz.readers;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.lang.management.ManagementFactory;
import java.lang.management.ThreadMXBean;
import java.nio.ByteBuffer;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.IntSupplier;

/** Commands with one fault each. The fuzzer must find these faults before it looks for others. */
final class PlantedFaults {
    private static final Map<String, Outcome.Time> TIMES = Map.of(
            "takes too long", new Outcome.Time(200, 60_000),
            "hangs in com.orlu.", new Outcome.Time(200, 500));
    private static final int OVER_A_GIGABYTE = (1 << 30) + (1 << 27);

    private final Path mIn;
    private final Path mOut;
    private final Canary mCanary;
    private final Map<String, IntSupplier> mFaults = new LinkedHashMap<>();

    private interface Writing {
        void run() throws IOException;
    }

    PlantedFaults(Path in, Path out, Canary canary) {
        mIn = in;
        mOut = out;
        mCanary = canary;
        mFaults.put("throws java.lang.IllegalStateException in com.orlu.", () -> {
            throw new IllegalStateException();
        });
        mFaults.put("throws java.lang.StackOverflowError", () -> deep(0));
        mFaults.put("prints run: error: java.io.EOFException",
                printing(2, "run: error: java.io.EOFException"));
        mFaults.put("prints ?at com.orlu.X.x(", printing(2, "\tat com.orlu.X.x(X.java:5)"));
        for (String control : List.of("\u001b", "\u0000", "\r", "\u007f", "\u009b", "\u202e", "\u2066",
                "\u2028")) {
            mFaults.put("prints U+" + Integer.toHexString(control.charAt(0)),
                    printing(0, "a" + control + "b"));
        }
        for (String empty : List.of("run: error: ", "run: error: null", "a.tiff: error: null",
                "a.json:3:1: warning: ", "a.png: error: damaged: ")) {
            mFaults.put("prints " + empty.replaceAll("\\d", "N"), printing(2, empty));
        }
        mFaults.put("status 3", printing(3, "text"));
        mFaults.put("status 2 and no message", () -> 2);
        mFaults.put("out of memory",
                printing(1, "run: error: out of memory: the frames are too many or too large"));
        mFaults.put("takes too long", PlantedFaults::spin);
        mFaults.put("takes over 1 GB", PlantedFaults::fill);
        mFaults.put("prints a file", doing(() -> System.out.println(Files.readString(mIn.resolve("link")))));
        mFaults.put("copies a file", doing(() -> Files.copy(mIn.resolve("link"), mOut.resolve("copy"))));
        mFaults.put("reads a file", doing(() -> Files.newInputStream(mIn.resolve("link")).read()));
        mFaults.put("writes outside", doing(() -> Files.writeString(mIn.resolve("../../new"), "")));
        mFaults.put("writes outside of the output folder", doing(() ->
                Files.writeString(mIn.resolve("new"), "")));
        mFaults.put("writes outside of the output", doing(() -> Files.writeString(mIn.resolve("link"), "")));
        mFaults.put("hangs in com.orlu.", PlantedFaults::hang);
    }

    /** Runs all commands and returns the faults that were not found. */
    List<String> missed() throws IOException {
        List<String> missed = new ArrayList<>();
        for (Map.Entry<String, IntSupplier> fault : mFaults.entrySet()) {
            ReaderFuzzer.remove(mOut);
            mCanary.arm(mIn);
            Outcome outcome = Outcome.of(fault.getValue(),
                    TIMES.getOrDefault(fault.getKey(), Outcome.Time.USUAL));
            String found = outcome.problem().isEmpty()
                    ? mCanary.problem(mIn, mOut, outcome.printed(), false) : outcome.problem();
            String wanted = fault.getKey().startsWith("prints U+") ? "prints a?b" : fault.getKey();
            if (!found.startsWith(wanted)) {
                missed.add(fault.getKey() + (found.isEmpty() ? "" : ", found instead: " + found));
            }
            Files.deleteIfExists(mIn.resolve("../../new"));
            Files.deleteIfExists(mIn.resolve("new"));
        }
        return missed;
    }

    int count() {
        return mFaults.size();
    }

    private static IntSupplier printing(int status, String text) {
        return () -> {
            System.out.println(text);
            return status;
        };
    }

    private static IntSupplier doing(Writing writing) {
        return () -> {
            try {
                writing.run();
                return 0;
            } catch (IOException e) {
                throw new UncheckedIOException(e);
            }
        };
    }

    private static int deep(int level) {
        return level < 0 ? 0 : deep(level + 1) + 1;
    }

    private static int spin() {
        long sum = 0;
        ThreadMXBean threads = ManagementFactory.getThreadMXBean();
        for (long start = threads.getCurrentThreadCpuTime();
                threads.getCurrentThreadCpuTime() - start < 400_000_000L;) {
            sum += start + 1;
        }
        return sum == 0 ? 1 : 0;
    }

    private static int fill() {
        ByteBuffer bytes = ByteBuffer.allocateDirect(OVER_A_GIGABYTE);
        for (int i = 0; i < bytes.capacity(); i += 4096) {
            bytes.put(i, (byte) 1);
        }
        return 0;
    }

    private static int hang() {
        try {
            Thread.sleep(Long.MAX_VALUE);
        } catch (InterruptedException e) {
            return 1;
        }
        return 0;
    }
}
