package com.orlu.orlu3rdalgoservice.tool.run;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;

/**
 * The folder that the launcher creates for one run and removes afterwards, named by the property orlu.work.
 */
public final class WorkFolder {
    /** The environment variable that names the file for a process's part of an index. */
    public static final String PAGES = "ORLU_PAGES";

    private WorkFolder() {
    }

    /** The events' file, which may not exist; null without a work folder. */
    public static Path events() {
        return ofEnvironment(EventLog.VARIABLE);
    }

    /** The file of the algorithm library's work report; it may not exist. Null without a work folder. */
    public static Path algorithmTrace() {
        return ofEnvironment("ORLU_ALGO_TRACE");
    }

    /** The folder of the probe's pixels; it may not exist. Null without a work folder. */
    public static Path pixels() {
        return ofEnvironment("ORLU_PIXELS");
    }

    /** The file of the native side's log; it may not exist. Null without a work folder. */
    public static Path log() {
        return ofEnvironment("ORLU_LOG_FILE");
    }

    /**
     * The state of the pages written so far, in the file of the process that writes the index, if it names
     * one.
     */
    public static Path pages() {
        Path named = ofEnvironment(PAGES);
        return named == null ? file("pages.json") : named;
    }

    /** The folder for the runs' folders unless the command line names one; null without a work folder. */
    public static Path runs() {
        return file("runs");
    }

    private static Path ofEnvironment(String variable) {
        String file = System.getenv(variable);
        return file == null || file.isEmpty() ? null : Path.of(file);
    }

    /** The VM's crash report, which may not exist; null without a work folder. */
    public static Path vmReport() {
        return file("vm_report.log");
    }

    /** The trials' results, which may not exist; null without a work folder. */
    public static Path trials() {
        return file("trials.json");
    }

    /** Notifies the launcher that the command finished, so a crash can be recognised. */
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
