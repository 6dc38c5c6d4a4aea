package com.orlu.orlu3rdalgoservice.tool.explain;

import com.orlu.orlu3rdalgoservice.tool.explain.Reading.Outcome;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;

import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.TreeSet;
import java.util.function.Predicate;

/** Finds tags without effect: misspelt, misplaced, or of a wrong type. */
public final class TagCheck {
    private final Readings mReadings;
    private final Set<String> mRead = new HashSet<>();

    public TagCheck(Readings readings) {
        mReadings = readings;
        for (Reading reading : readings.all()) {
            if (!reading.is(Outcome.NEVER_READ)) {
                mRead.add(reading.tag());
            }
        }
    }

    /** Returns whether the request has the tag, but the tag was not looked up in any frame. */
    boolean isNeverRead(Reading reading) {
        return reading.is(Outcome.NEVER_READ) && !mRead.contains(reading.tag());
    }

    /**
     * Returns the verdict with additional reasons: the findings of --strict and the number of warnings. The
     * status is FAILED if there are any reasons. An UNUSABLE verdict is returned unchanged.
     */
    public Verdict strict(Verdict verdict, int warnings) {
        if (verdict.status() == Verdict.UNUSABLE) {
            return verdict;
        }
        List<String> reasons = new ArrayList<>(verdict.reasons());
        addReason(reasons, "never read", this::isNeverRead);
        addReason(reasons, "of a wrong type", reading -> reading.is(Outcome.WRONG_TYPE));
        if (warnings > 0) {
            reasons.add((warnings == 1 ? "1 warning" : warnings + " warnings") + " on the request file");
        }
        return reasons.isEmpty() ? verdict : new Verdict(Verdict.FAILED, reasons, verdict.breaches());
    }

    private void addReason(List<String> reasons, String problem, Predicate<Reading> has) {
        Set<String> tags = new TreeSet<>();
        mReadings.all().stream().filter(has).forEach(reading -> tags.add(reading.tag()));
        if (!tags.isEmpty()) {
            reasons.add((tags.size() == 1 ? "1 tag " : tags.size() + " tags ") + problem + ": "
                    + String.join(", ", tags));
        }
    }
}
