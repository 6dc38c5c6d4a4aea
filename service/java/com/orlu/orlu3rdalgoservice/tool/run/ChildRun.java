package com.orlu.orlu3rdalgoservice.tool.run;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;

/**
 * A run of this command in a process of its own, with another library or machine, which may end its process.
 * It records what it does in a folder of its own, so that no two runs write the same files.
 */
public final class ChildRun {
    private static final String NATIVE_LIBRARY = "liborlu.vas.native.interface.so";

    /** Whether this process is being stopped. */
    private static volatile boolean sIsEnding;

    private final Path mFolder;
    private final boolean mArm;
    private final Path mLibrary;

    /**
     * The library is an algorithm library, or another build of the native one by its file's name; null for
     * none.
     */
    public ChildRun(String name, boolean arm, Path library) throws IOException {
        String work = System.getProperty("orlu.work");
        mFolder = Files.createTempDirectory(Path.of(work), name + "-");
        mArm = arm;
        mLibrary = library;
    }

    /** Runs request files, and returns the folder of their recordings; fewer if the process ended. */
    public Path run(List<Path> requests) throws IOException {
        List<String> arguments = new ArrayList<>(List.of("--out", mFolder.resolve("images").toString()));
        requests.forEach(request -> arguments.add(request.toString()));
        return start(arguments);
    }

    /** Tries what each tag of a request changes, and returns the file of what was found. */
    public Path trials(Path request) throws IOException {
        return start(List.of("trials", request.toString()));
    }

    private Path start(List<String> arguments) throws IOException {
        Path record = mFolder.resolve("recordings");
        Path log = mFolder.resolve("log");
        List<String> command = new ArrayList<>(List.of(System.getProperty("orlu.launcher")));
        command.addAll(arguments);
        command.addAll(List.of("--record", record.toString()));
        if (mArm) {
            command.add("--arm");
        }
        ProcessBuilder builder = new ProcessBuilder(command).redirectErrorStream(true)
                .redirectOutput(log.toFile());
        setEnvironment(builder.environment());
        int status;
        try {
            Process child = builder.start();
            Runtime.getRuntime().addShutdownHook(new Thread(() -> endBeforeThis(child)));
            status = child.waitFor();
            if (sIsEnding) {
                // What an interrupted run came to is nothing to go on with.
                Thread.currentThread().join();
            }
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
            throw new IllegalStateException("interrupted", e);
        }
        if (!Files.exists(record)) {
            throw new IllegalStateException(
                    "the request did not run, status " + status + ": " + Files.readString(log));
        }
        return record;
    }

    // The launcher removes this process's folder as soon as it ends: a child must not write there any more.
    private static void endBeforeThis(Process child) {
        sIsEnding = true;
        child.descendants().forEach(ProcessHandle::destroy);
        child.destroy();
        try {
            child.waitFor();
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
        }
    }

    private void setEnvironment(Map<String, String> environment) {
        // These are of this process; the other makes its own.
        environment.remove("ORLU_EVENTS");
        environment.remove("ORLU_ALGO_TRACE");
        environment.remove("ORLU_PIXELS");
        environment.put("LD_LIBRARY_PATH", System.getProperty("orlu.libraryPath", ""));
        if (mArm) {
            environment.remove("ORLU_BUILD");
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
