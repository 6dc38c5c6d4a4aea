package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.judge.Finding.Tab;

import java.util.ArrayList;
import java.util.List;

/** Explains a verdict's reasons in detail, and where the page shows them. */
public final class VerdictFindings {
    /**
     * The finding for one kind of reason.
     *
     * @param words a reason of this kind contains one of these
     */
    private record Kind(String name, Tab tab, String what, String why, String... words) {
    }

    // The first match counts.
    private static final List<Kind> KINDS = List.of(
            new Kind("crash", Tab.TIMELINE, "The algorithm library ended the process.",
                    "The timeline's last slices are what was under way: one that has not returned is "
                            + "where it happened. Everything behind that is missing from this page.",
                    "ended the process", "stopped by signal"),
            new Kind("unusable", Tab.LOG, "The algorithm library can't be used, so nothing ran.",
                    "Nothing was handed on, and there is no output to look at. What the verdict names is "
                            + "missing from that file, or the file is not the one that was meant.",
                    "the algorithm library", "no algorithm library", "createClient"),
            new Kind("time-out", Tab.TIMELINE,
                    "The request timed out: no callback ended it, so that no result was fetched.",
                    "In the timeline the wait is not followed by a callback of this request. Either the "
                            + "library never finished, or its callback was ignored for the reason given "
                            + "here.",
                    "no callback for request"),
            new Kind("ignored-callback", Tab.TIMELINE, "A callback was ignored.",
                    "The library called back in a way that nobody can take; the reason is given here.",
                    "ignored"),
            new Kind("not-run", Tab.RESULTS, "An algorithm of the list was not run.",
                    "The library took the list and left it alone, without saying that it knowingly did so.",
                    "but nobody ran"),
            new Kind("tags", Tab.TAGS, "The request has tags that do nothing.",
                    "They are misspelt, of another type than is asked for, or not for this kind of capture.",
                    "never read", "of a wrong type"),
            new Kind("failed-call", Tab.TIMELINE, "A call failed.",
                    "Look for it in the timeline: its outcome is shown when it is selected.", ""));

    private VerdictFindings() {
    }

    /** Returns one finding for each reason, except those about outputs: their pictures say more. */
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
