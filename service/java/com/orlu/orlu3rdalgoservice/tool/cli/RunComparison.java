package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.compare.ComparisonReport;
import com.orlu.orlu3rdalgoservice.tool.compare.Difference;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.view.Results;

import java.io.IOException;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.Option;

/** The options and results of comparing runs, in the subcommands replay and diff. */
final class RunComparison extends ResultOptions {
    @Option(names = "--no-explain", description = "Don't search for the tags that cause differences")
    private boolean mLeavesCauses;
    @Option(names = "--ignore", paramLabel = "NAME",
            description = "Ignore NAME, such as a parameter; repeatable")
    private List<String> mIgnored = List.of();
    @Option(names = "--tolerance", paramLabel = "NUMBER",
                description = "Ignore differences of numbers and samples up to NUMBER")
    private double mTolerance;
    @Option(names = "--out", paramLabel = "DIR", description = "Write pictures of differing outputs to DIR")
    private Path mOut;

    private Results mResults;

    /** Starts the results of this subcommand. Throws an IllegalArgumentException if an option is invalid. */
    void begin(String command) {
        // The negation also rejects NaN.
        if (!(mTolerance >= 0)) {
            throw new IllegalArgumentException("--tolerance: expected a NUMBER of at least 0, found "
                    + mTolerance);
        }
        check(new GivenPaths().folder("--out", mOut));
        mResults = new Results(command);
    }

    /** Prints the differences, and adds them to the results. */
    void print(String title, Run one, Run other) throws MistakeException, IOException {
        ComparisonReport.Options options =
                new ComparisonReport.Options(mIgnored, mTolerance, mOut, !mLeavesCauses);
        add(title, new ComparisonReport(options, one, other, text()).print(title).stream()
                .map(Difference::text).toList());
    }

    /** Adds a result, which is ok if `differences` is empty. */
    void add(String title, List<String> differences) {
        mResults.add(title, differences.isEmpty() ? Verdict.ok() : new Verdict(Verdict.FAILED, differences),
                0, JsonWriter.object("differences", differences));
    }

    /** Writes the results and returns the status of the command: 0 if all runs are equal. */
    int finish() throws IOException {
        write(mResults);
        int failed = mResults.failed().size();
        if (quiet) {
            last().println(new Verdict(mResults.status(), List.of("%d of %d runs differ".formatted(
                    failed, mResults.size()))).line());
        }
        return mResults.status();
    }
}
