package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.record.RequestRecorder;

import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.ParseResult;

/** What the command line of ./run without a subcommand says. RunCommand has the options. */
final class Options {
    final boolean params;
    final boolean tags;
    final boolean strict;
    final boolean wide;
    final boolean oneClient;
    final boolean check;
    final Path out;
    final Path photo;
    final Path json;
    final Path events;
    final Path timeline;
    final Path report;
    final Path record;
    /** Keys of parameters, perhaps with their sections, and words such as "all". */
    final List<String> explain;

    private final List<Path> mFiles;

    private Options(ParseResult line) {
        params = line.hasMatchedOption("--params");
        tags = line.hasMatchedOption("--tags");
        strict = line.hasMatchedOption("--strict");
        wide = line.hasMatchedOption("--wide");
        oneClient = line.hasMatchedOption("--one-client");
        check = line.hasMatchedOption("--check");
        out = line.matchedOptionValue("--out", Path.of("out"));
        photo = line.matchedOptionValue("--photo", null);
        json = line.matchedOptionValue("--json", null);
        events = line.matchedOptionValue("--events", null);
        timeline = line.matchedOptionValue("--timeline", null);
        report = line.matchedOptionValue("--report", null);
        record = line.matchedOptionValue("--record", null);
        explain = line.matchedOptionValue("--explain", List.of());
        mFiles = line.matchedPositionalValue(0, List.of());
    }

    /** What a command line of RunCommand's options says. */
    static Options of(ParseResult line) {
        Options options = new Options(line);
        if (options.photo != null && !Files.isRegularFile(options.photo)) {
            throw new IllegalArgumentException("--photo: no such photo: " + options.photo);
        }
        return options;
    }

    /** The recorder that --record, else the recorder's own property asks for; null when neither does. */
    RequestRecorder recorder() {
        return record == null ? RequestRecorder.ofProperties()
                : new RequestRecorder(record.toFile(), Integer.MAX_VALUE, Long.MAX_VALUE);
    }

    /** Refuses what can't be written or must not, with an IllegalArgumentException. */
    void checkWritten() {
        new WrittenFiles().folder("--out", out).folder("--record", record).folder("--report", report)
                .file("--json", json).file("--events", events).file("--timeline", timeline);
    }

    /** Whether look-ups of tags are to be recorded: they are many, and cost as much as the request. */
    boolean needsLookups() {
        return events != null || needsTrials();
    }

    /** Whether anything is asked for that the launcher's trials find, and look-ups tell. */
    boolean needsTrials() {
        return tags || strict || report != null || !explain.isEmpty();
    }

    /** The request files, or the one that the launcher names when there are none. */
    List<Path> requests() {
        String usual = System.getProperty("orlu.request");
        return !mFiles.isEmpty() || usual == null ? mFiles : List.of(Path.of(usual));
    }
}
