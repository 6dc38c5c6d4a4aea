package com.orlu.orlu3rdalgoservice.tool.run;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.concurrent.ConcurrentHashMap;
import java.util.stream.Stream;

/** Runs ./run in a separate process, which may use other libraries or an emulator, and may crash. */
public final class ChildRun {
    private static final String NATIVE_LIBRARY = "liborlu.vas.native.interface.so";
    private static final String RECORDINGS = "recordings";

    private static final Set<Process> RUNNING = ConcurrentHashMap.newKeySet();

    static {
        Runtime.getRuntime().addShutdownHook(new Thread(ChildRun::endBeforeThis));
    }

    /** Whether this process is being stopped. */
    private static volatile boolean sIsEnding;

    private final Path mFolder;
    private final boolean mArm;
    private final Path mLibrary;
    private final Map<String, String> mVariables = new HashMap<>();
    private int mStatus;

    /**
     * `library` is another build of the native library if its file name is
     * liborlu.vas.native.interface.so, else an algorithm library; null for the default libraries.
     */
    public ChildRun(String name, boolean arm, Path library) throws IOException {
        String work = System.getProperty("orlu.work");
        mFolder = Files.createTempDirectory(Path.of(work), name + "-");
        mArm = arm;
        mLibrary = library;
    }

    /**
     * Runs request files and returns the folder of their recordings. If the process died, some recordings
     * are missing.
     */
    public Path run(List<Path> requests) throws IOException {
        List<String> arguments = new ArrayList<>();
        requests.forEach(request -> arguments.add(request.toString()));
        return record(arguments);
    }

    /** Runs the trials of a request's tags (all if `only` is empty). Returns the file with the results. */
    public Path trials(Path request, Set<String> only) throws IOException {
        List<String> arguments =
                new ArrayList<>(List.of("trials", request.toString(), "--record", file(RECORDINGS).toString()));
        only.forEach(tag -> arguments.add("--only=" + tag));
        start(arguments);
        return recorded();
    }

    /** Runs ./run with these arguments and returns the folder of the recordings. */
    public Path record(List<String> arguments) throws IOException {
        List<String> all = new ArrayList<>(arguments);
        all.addAll(List.of("--record", file(RECORDINGS).toString(), "--out", file("images").toString()));
        start(all);
        return recorded();
    }

    private Path recorded() throws IOException {
        if (!Files.exists(file(RECORDINGS))) {
            throw new IllegalStateException("the request did not run, status " + mStatus + ": "
                    + String.join("; ", (printed() + errors()).lines().toList()));
        }
        return file(RECORDINGS);
    }

    /** Runs ./run with these arguments, waits for it, and returns its exit status. */
    public int start(List<String> arguments) throws IOException {
        List<String> command = new ArrayList<>(List.of(System.getProperty("orlu.launcher")));
        command.addAll(arguments);
        if (mArm) {
            command.add("--arm");
        }
        ProcessBuilder builder = new ProcessBuilder(command).redirectOutput(file("printed").toFile())
                .redirectError(file("errors").toFile());
        setEnvironment(builder.environment());
        try {
            Process child = builder.start();
            RUNNING.add(child);
            mStatus = child.waitFor();
            RUNNING.remove(child);
            if (sIsEnding) {
                // Blocks this thread until the exit: the results of an interrupted run are useless.
                Thread.currentThread().join();
            }
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
            throw new IllegalStateException("interrupted", e);
        }
        return mStatus;
    }

    /** A file in the run's own folder. */
    public Path file(String name) {
        return mFolder.resolve(name);
    }

    /** The exit status of the last process. */
    public int status() {
        return mStatus;
    }

    /** What the process wrote to standard output. */
    public String printed() throws IOException {
        return Files.readString(file("printed"));
    }

    /** What the process wrote to standard error. */
    public String errors() throws IOException {
        return Files.readString(file("errors"));
    }

    /** Adds a variable to the process's environment. */
    public ChildRun with(String variable, String value) {
        mVariables.put(variable, value);
        return this;
    }

    /** Removes the run's files: many recordings of large images would fill the disk. */
    public void remove() throws IOException {
        try (Stream<Path> files = Files.walk(mFolder)) {
            for (Path file : files.sorted(Comparator.reverseOrder()).toList()) {
                Files.delete(file);
            }
        }
    }

    // The children must exit first: the launcher removes this process's folder as soon as this process exits.
    private static void endBeforeThis() {
        sIsEnding = true;
        for (Process child : RUNNING) {
            child.descendants().forEach(ProcessHandle::destroy);
            child.destroy();
        }
        try {
            for (Process child : RUNNING) {
                child.waitFor();
            }
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
        }
    }

    private void setEnvironment(Map<String, String> environment) {
        // These variables name files of this process; the child sets its own.
        environment.remove("ORLU_EVENTS");
        environment.remove("ORLU_ALGO_TRACE");
        environment.remove("ORLU_PIXELS");
        environment.putAll(mVariables);
        environment.put("LD_LIBRARY_PATH", System.getProperty("orlu.libraryPath", ""));
        if (mArm && !System.getProperty("os.arch").startsWith("arm")) {
            environment.remove("ORLU_BUILD");
        } else {
            // Parallel processes must not build.
            environment.put("ORLU_BUILD", System.getProperty("orlu.build"));
        }
        if (mLibrary == null) {
            return;
        }
        Path library = mLibrary.toAbsolutePath();
        if (library.getFileName().toString().equals(NATIVE_LIBRARY)) {
            environment.put("ORLU_NATIVE_FOLDER", library.getParent().toString());
        } else {
            environment.put("ORLU_ALGO_LIBRARY", library.toString());
        }
    }
}
