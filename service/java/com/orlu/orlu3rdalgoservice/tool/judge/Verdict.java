package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.util.List;

/**
 * The outcome of a run.
 *
 * @param status  the exit status of the command
 * @param reasons what went wrong, the most important first; empty if all is well
 */
public record Verdict(int status, List<String> reasons) {
    public static final int OK = 0;
    /** A request failed on its way. */
    public static final int FAILED = 1;
    /** The command line or a request file is invalid. */
    public static final int REFUSED = 2;
    /** The algorithm library can't be opened, or lacks a mandatory callable. */
    public static final int UNUSABLE = 3;

    public static Verdict ok() {
        return new Verdict(OK, List.of());
    }

    /** The last line of a run. */
    public String line() {
        return status == OK ? "verdict  ok" : Printable.line("verdict  FAILED: " + String.join("; ", reasons));
    }
}
