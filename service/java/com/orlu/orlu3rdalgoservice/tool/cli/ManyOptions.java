package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;
import com.orlu.orlu3rdalgoservice.tool.text.TextTable;
import com.orlu.orlu3rdalgoservice.tool.view.ContactSheet;
import com.orlu.orlu3rdalgoservice.tool.view.Results;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.Option;

/** The options and the common output of subcommands that run many requests. */
final class ManyOptions extends ResultOptions {
    @Option(names = "--report", paramLabel = "DIR",
            description = "Write a page with the pictures side by side")
    Path report;
    @Option(names = "--jobs", paramLabel = "N",
            description = "Run N requests in parallel; the measured times increase")
    int jobs = 1;

    /** Throws an IllegalArgumentException if an option is invalid. */
    void check() {
        RunCommand.needsPositive("--jobs", jobs);
        check(new GivenPaths().folder("--report", report));
    }

    /** Prints the table and the verdict, and writes the requested files. Returns the command's status. */
    int finish(Results results, TextTable table, ContactSheet sheet) throws IOException {
        PrintStream to = text();
        table.print(new TextLayout(to, TextLayout.REPORT));
        to.println();
        if (report != null) {
            to.println("  page        " + Printable.line(sheet.write(report).toString()));
        }
        write(results);
        int failed = results.failed().size();
        int status = failed == 0 ? Verdict.OK : Verdict.FAILED;
        last().println(new Verdict(status, List.of(failed + " of " + results.size() + " requests")).line());
        return status;
    }
}
