package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/** Reads the native side's log: the file that ORLU_LOG_FILE names, written by the host's log library. */
final class LogLines {
    private static final int FIELDS = 5;

    private LogLines() {
    }

    /**
     * Returns the lines with start <= time < end, each as [time, thread, level, tag, text]. Times are those
     * of System.nanoTime(). Returns an empty list if there is no log.
     */
    static List<Object> between(long start, long end) throws IOException {
        List<Object> lines = new ArrayList<>();
        for (String line : read(WorkFolder.log())) {
            String[] fields = line.split("\t", FIELDS);
            if (fields.length < FIELDS || !fields[0].matches("[0-9]{1,18}")) {
                continue;
            }
            long time = Long.parseLong(fields[0]);
            if (time >= start && time < end) {
                lines.add(List.of(time, fields[1], fields[2], fields[3], fields[4]));
            }
        }
        return lines;
    }

    private static List<String> read(Path file) throws IOException {
        return file == null || !Files.exists(file) ? List.of()
                : new String(Files.readAllBytes(file), StandardCharsets.UTF_8).lines().toList();
    }
}
