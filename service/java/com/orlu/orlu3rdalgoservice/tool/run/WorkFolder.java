package com.orlu.orlu3rdalgoservice.tool.run;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;

/** The folder that the launcher makes for one run and removes after it, named by the property orlu.work. */
public final class WorkFolder {
    /** The environment variable by which a process gets the file of its part of an index. */
    public static final String PAGES = "ORLU_PAGES";

    private WorkFolder() {
    }

    /** The events' file, which need not be there; null when the launcher names none. */
    public static Path events() {
        return ofEnvironment(EventLog.VARIABLE);
    }

    /** The file of what the algorithm library says of its work, likewise. */
    public static Path algorithmTrace() {
        return ofEnvironment("ORLU_ALGO_TRACE");
    }

    /** The folder of the probe's pixels, likewise. */
    public static Path pixels() {
        return ofEnvironment("ORLU_PIXELS");
    }

    /** The file of the native side's log, likewise. */
    public static Path log() {
        return ofEnvironment("ORLU_LOG_FILE");
    }

    /** What was written of pages so far; another process's, which has the index, where it names one. */
    public static Path pages() {
        Path named = ofEnvironment(PAGES);
        return named == null ? file("pages.json") : named;
    }

    /** Where each run has a folder, if nobody names another place; null when there is no folder. */
    public static Path runs() {
        return file("runs");
    }

    private static Path ofEnvironment(String variable) {
        String file = System.getenv(variable);
        return file == null || file.isEmpty() ? null : Path.of(file);
    }

    /** The VM's report on its crash, which need not be there; null when there is no folder. */
    public static Path vmReport() {
        return file("vm_report.log");
    }

    /** What the trials found, which need not be there; null when there is no folder. */
    public static Path trials() {
        return file("trials.json");
    }

    /** Says to the launcher that the command came to its end: nothing else ended the process. */
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
