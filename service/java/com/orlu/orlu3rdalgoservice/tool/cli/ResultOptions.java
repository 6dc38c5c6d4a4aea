package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.view.Results;

import java.io.IOException;
import java.io.OutputStream;
import java.io.PrintStream;
import java.nio.file.Path;
import java.util.stream.Stream;

import picocli.CommandLine.Option;

/** The options that select the form of a command's results. */
class ResultOptions {
    @Option(names = "--json", paramLabel = "FILE",
                description = "Write the results as JSON; - for standard output")
    Path json;
    @Option(names = "--junit", paramLabel = "FILE",
                description = "Write the results as JUnit XML; - for standard output")
    Path junit;
    @Option(names = "--quiet", description = "Print only the verdict")
    boolean quiet;

    /**
     * Checks the files of --json and --junit, and adds them to `paths`. Throws IllegalArgumentException if a
     * file is unsuitable.
     */
    void check(GivenPaths paths) {
        paths.file("--json", json).file("--junit", junit);
    }

    /**
     * Returns the stream for readable text. It discards everything with --quiet, or if --json or --junit
     * writes to standard output.
     */
    PrintStream text() {
        return quiet ? nowhere() : last();
    }

    /**
     * Returns the stream for the verdict. It discards everything if --json or --junit writes to standard
     * output.
     */
    PrintStream last() {
        boolean isTaken = Stream.of(json, junit).anyMatch(Results.STANDARD_OUTPUT::equals);
        return isTaken ? nowhere() : System.out;
    }

    private static PrintStream nowhere() {
        return new PrintStream(OutputStream.nullOutputStream());
    }

    void write(Results results) throws IOException {
        results.write(json, junit);
    }
}
