package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.util.ArrayList;
import java.util.List;

/**
 * The outcome of a run.
 *
 * @param status   the exit status of the command
 * @param reasons  what went wrong; empty if all is well
 * @param breaches the breaches of the contract, also listed in the reasons; null without --validate
 */
public record Verdict(int status, List<String> reasons, List<Breach> breaches) {
    public static final int OK = 0;
    /** A request or a check failed, or a comparison found differences. */
    public static final int FAILED = 1;
    /** The command line or an input file is invalid. */
    public static final int REFUSED = 2;
    /** The algorithm library can't be used; ./run --help lists the reasons. */
    public static final int UNUSABLE = 3;

    public Verdict(int status, List<String> reasons) {
        this(status, reasons, null);
    }

    public static Verdict ok() {
        return new Verdict(OK, List.of());
    }

    /** Returns this verdict with the breaches added. A breach changes the status OK to FAILED. */
    public Verdict with(List<Breach> found) {
        List<String> all = new ArrayList<>(reasons);
        found.forEach(breach -> all.add(breach.line()));
        return new Verdict(status == OK && !found.isEmpty() ? FAILED : status, all, found);
    }

    /** Returns the last line of a run's output. */
    public String line() {
        return status == OK ? "verdict  ok" : Printable.line("verdict  FAILED: " + String.join("; ", reasons));
    }
}
