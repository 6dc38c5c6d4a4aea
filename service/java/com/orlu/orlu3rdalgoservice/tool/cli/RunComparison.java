package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.compare.ComparisonReport;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.Option;

/** How replay and diff compare two runs. */
final class RunComparison {
    static final int EQUAL = 0;
    static final int DIFFERENT = 1;

    @Option(names = "--no-explain", description = "don't find out because of which tags parameters differ, "
            + "which takes some seconds")
    private boolean mLeavesCauses;
    @Option(names = "--ignore", paramLabel = "NAME",
            description = "leave out this parameter, value put, call or output; can be given again")
    private List<String> mIgnored = List.of();
    @Option(names = "--tolerance", paramLabel = "NUMBER", description = "take for equal what differs by no "
            + "more: numbers, and samples of images from 0 to 255")
    private double mTolerance;
    @Option(names = "--out", paramLabel = "DIR", description = "write pictures of outputs that differ there")
    private Path mOut;

    /** Throws an IllegalArgumentException if an option is invalid. */
    void check() {
        // Also what is no number at all.
        if (!(mTolerance >= 0)) {
            throw new IllegalArgumentException("--tolerance needs a NUMBER of 0 or more, found "
                    + mTolerance);
        }
        new GivenPaths().folder("--out", mOut);
    }

    /** Prints what differs, and returns EQUAL or DIFFERENT. */
    int print(String title, Run one, Run other) throws MistakeException, IOException {
        ComparisonReport.Options options =
                new ComparisonReport.Options(mIgnored, mTolerance, mOut, !mLeavesCauses);
        return new ComparisonReport(options, one, other).print(title) ? EQUAL : DIFFERENT;
    }
}
