package com.orlu.orlu3rdalgoservice.tool.run;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;

/**
 * Paths of files in the work folder, and paths from environment variables; the files may be missing.
 * The launcher creates the work folder for one run, passes it in the property orlu.work, and removes it
 * afterwards.
 */
public final class WorkFolder {
    /** Environment variable with the path of pages(); set if several processes write pages for one index. */
    public static final String PAGES = "ORLU_PAGES";

    private WorkFolder() {
    }

    /** The events file. Null if ORLU_EVENTS is not set. */
    public static Path events() {
        return ofEnvironment(EventLog.VARIABLE);
    }

    /** The file of the algorithm library's trace. Null if ORLU_ALGO_TRACE is not set. */
    public static Path algorithmTrace() {
        return ofEnvironment("ORLU_ALGO_TRACE");
    }

    /** The folder where the probe writes the images' pixels. Null if ORLU_PIXELS is not set. */
    public static Path pixels() {
        return ofEnvironment("ORLU_PIXELS");
    }

    /** The file of the native side's log. Null if ORLU_LOG_FILE is not set. */
    public static Path log() {
        return ofEnvironment("ORLU_LOG_FILE");
    }

    /**
     * The file with the state of the pages written so far. PAGES contains its path; if PAGES is not set, the
     * file is in the work folder. Null if there is no work folder either.
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

    /** The VM's crash report. Null without a work folder. */
    public static Path vmReport() {
        return file("vm_report.log");
    }

    /** The file with the trials' results. Null without a work folder. */
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
