package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.judge.Finding.Tab;

import java.util.ArrayList;
import java.util.List;

/** Explains a verdict's reasons in detail, and names the page's tab that shows them. */
public final class VerdictFindings {
    /** A kind of finding, for reasons that contain one of `words`. */
    private record Kind(String name, Tab tab, String what, String why, String... words) {
    }

    // The first kind that matches a reason explains it.
    private static final List<Kind> KINDS = List.of(
            new Kind("breach", Tab.TIMELINE, "The service or the algorithm library broke the contract.",
                    "The event number identifies the call in the timeline and in the file of --events. "
                            + "See docs/conformance.md for the contract.",
                    "breach of the contract"),
            new Kind("crash", Tab.TIMELINE, "The process ended before the request finished.",
                    "The last open slice of the timeline is the operation that was running then. This page "
                            + "has nothing after it.",
                    "ended the process", "stopped by signal", "the process ended"),
            new Kind("incomplete", Tab.RESULTS, "Values were lost between service and algorithm library.",
                    "The request ran without its parameters, or without its results.",
                    "lacks createMetadata", "lacks setValue", "lacks getValue"),
            new Kind("unusable", Tab.LOG, "The algorithm library can't be used, so nothing ran.",
                    "No request was submitted, and there is no output. The verdict names the fault. Check "
                            + "that the library is the intended file.",
                    "the algorithm library", "no algorithm library", "createClient"),
            new Kind("time-out", Tab.TIMELINE, "The request timed out: no callback finished it.",
                    "The timeline shows no valid callback of this request before the end of the wait. Either the library "
                            + "never finished, or its callback was ignored for the given reason.",
                    "no callback for request"),
            new Kind("ignored-callback", Tab.TIMELINE, "A callback was ignored.",
                    "The library's callback was invalid for the given reason.",
                    "ignored"),
            new Kind("not-run", Tab.RESULTS, "An algorithm of the list was not run.",
                    "The library reported the algorithm neither as run nor as skipped.",
                    "but not run"),
            new Kind("tags", Tab.TAGS, "The request has tags without effect.",
                    "They are misspelt, have a wrong type, or don't apply to this kind of capture.",
                    "never read", "of a wrong type"),
            new Kind("warnings", Tab.TAGS, "The request file has warnings.", "--check prints them.",
                    "on the request file"),
            new Kind("failed-call", Tab.TIMELINE, "A call failed.",
                    "Select the call in the timeline to see its outcome.", ""));

    private VerdictFindings() {
    }

    /**
     * Returns a finding for each reason. Skips the reason that names the crash file. Also skips reasons about
     * outputs, which ImageFindings explains.
     */
    public static List<Finding> of(Verdict verdict) {
        List<Finding> findings = new ArrayList<>();
        for (String reason : verdict.reasons()) {
            if (!reason.startsWith("output ") && !reason.startsWith("the crash file")) {
                Kind kind = KINDS.stream().filter(each -> isOf(reason, each)).findFirst().orElseThrow();
                findings.add(Finding.wrong(
                        kind.name(), kind.tab(), kind.what() + " The verdict: " + reason + ".", kind.why()));
            }
        }
        return findings;
    }

    private static boolean isOf(String reason, Kind kind) {
        for (String words : kind.words()) {
            if (reason.contains(words)) {
                return true;
            }
        }
        return false;
    }
}
