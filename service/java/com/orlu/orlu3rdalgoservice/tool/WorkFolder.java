package com.orlu.orlu3rdalgoservice.tool;

import com.orlu.orlu3rdalgoservice.tool.events.EventLog;
import com.orlu.orlu3rdalgoservice.tool.page.PageFolder;
import com.orlu.orlu3rdalgoservice.tool.report.TraceReader;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;

/** The folder that the launcher makes for one run and removes after it, named by the property orlu.work. */
final class WorkFolder {
    private WorkFolder() {
    }

    /** The events' file, which need not be there; null when the launcher names none. */
    static Path events() {
        return ofEnvironment(EventLog.VARIABLE);
    }

    /** The file of what the algorithm library says of its work, likewise. */
    static Path algorithmTrace() {
        return ofEnvironment(TraceReader.VARIABLE);
    }

    /** The folder of the probe's pixels, likewise. */
    static Path pixels() {
        return ofEnvironment("ORLU_PIXELS");
    }

    /** The file of the native side's log, likewise. */
    static Path log() {
        return ofEnvironment("ORLU_LOG_FILE");
    }

    /** What a run's pages are made of. */
    static PageFolder.Sources pageSources() {
        return new PageFolder.Sources(events(), algorithmTrace(), log(), file("pages.json"));
    }

    private static Path ofEnvironment(String variable) {
        String file = System.getenv(variable);
        return file == null || file.isEmpty() ? null : Path.of(file);
    }

    /** The VM's report on its crash, which need not be there; null when there is no folder. */
    static Path vmReport() {
        return file("vm_report.log");
    }

    /** What the trials found, which need not be there; null when there is no folder. */
    static Path trials() {
        return file("trials.json");
    }

    /** Says to the launcher that the command came to its end: nothing else ended the process. */
    static void markFinished() {
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
