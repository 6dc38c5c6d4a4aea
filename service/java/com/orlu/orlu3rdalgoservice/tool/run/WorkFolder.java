package com.orlu.orlu3rdalgoservice.tool.run;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;

/** The launcher's folder for one run, removed afterwards. The property orlu.work names it. */
public final class WorkFolder {
    /** The environment variable that names pages() if several processes write pages for one index. */
    public static final String PAGES = "ORLU_PAGES";

    private WorkFolder() {
    }

    /** The events file; it may not exist. Null if ORLU_EVENTS is not set. */
    public static Path events() {
        return ofEnvironment(EventLog.VARIABLE);
    }

    /** The file of the algorithm library's trace; it may not exist. Null if ORLU_ALGO_TRACE is not set. */
    public static Path algorithmTrace() {
        return ofEnvironment("ORLU_ALGO_TRACE");
    }

    /** The folder of the probe's pixels; it may not exist. Null if ORLU_PIXELS is not set. */
    public static Path pixels() {
        return ofEnvironment("ORLU_PIXELS");
    }

    /** The file of the native side's log; it may not exist. Null if ORLU_LOG_FILE is not set. */
    public static Path log() {
        return ofEnvironment("ORLU_LOG_FILE");
    }

    /**
     * The file with the state of the pages written so far: the file that PAGES names, else one in the work
     * folder. Null without either.
     */
    public static Path pages() {
        Path named = ofEnvironment(PAGES);
        return named == null ? file("pages.json") : named;
    }

    /** The default parent of the runs' folders; null without a work folder. */
    public static Path runs() {
        return file("runs");
    }

    private static Path ofEnvironment(String variable) {
        String file = System.getenv(variable);
        return file == null || file.isEmpty() ? null : Path.of(file);
    }

    /** The VM's crash report; it may not exist. Null without a work folder. */
    public static Path vmReport() {
        return file("vm_report.log");
    }

    /** The file with the trials' results; it may not exist. Null without a work folder. */
    public static Path trials() {
        return file("trials.json");
    }

    /** Notifies the launcher that the command finished. Without this marker, the launcher assumes a crash. */
    public static void markFinished() {
        Path marker = file("finished");
        if (marker != null) {
            try {
                Files.writeString(marker, "");
            } catch (IOException e) {
                throw new UncheckedIOException(e);
            }
        }
    }

    private static Path file(String name) {
        String folder = System.getProperty("orlu.work");
        return folder == null ? null : Path.of(folder, name);
    }
}
