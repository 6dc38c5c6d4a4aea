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
    @Option(names = "--json", paramLabel = "FILE", description = "write the results as JSON "
            + "(docs/results.schema.json); - for standard output, which then has nothing else")
    Path json;
    @Option(names = "--junit", paramLabel = "FILE", description = "write the results as JUnit's XML; - for "
            + "standard output")
    Path junit;
    @Option(names = "--quiet", description = "print the verdict alone")
    boolean quiet;

    /** Throws an IllegalArgumentException if a file can't be written; `paths` has the other paths. */
    void check(GivenPaths paths) {
        paths.file("--json", json).file("--junit", junit);
    }

    /** The stream for texts for people: standard output, or nowhere. */
    PrintStream text() {
        return quiet ? nowhere() : last();
    }

    /** The stream for the verdict. */
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
