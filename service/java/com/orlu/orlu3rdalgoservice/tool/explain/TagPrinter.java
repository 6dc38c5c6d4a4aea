package com.orlu.orlu3rdalgoservice.tool.explain;

import com.orlu.orlu3rdalgoservice.tool.explain.Reading.Outcome;
import com.orlu.orlu3rdalgoservice.tool.model.Dependence;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import java.util.function.Predicate;

/** Prints the outcome of each frame's tags, in groups. */
public final class TagPrinter {
    private static final String INDENT = "  ";

    private final Readings mReadings;
    private final TagCheck mCheck;
    private final Dependences mDependences;
    // The last value of each parameter, which is the effective one.
    private final Map<String, Parameter> mParameters = new LinkedHashMap<>();

    public TagPrinter(Run run, Dependences dependences) {
        mReadings = Readings.of(run, dependences);
        mCheck = new TagCheck(mReadings);
        mDependences = dependences;
        run.handover().parameters().forEach(parameter -> mParameters.put(parameter.fullName(), parameter));
    }

    public void print(TextLayout lines) {
        groups().forEach((heading, rows) -> {
            lines.plain("tags " + heading + ": " + rows.size());
            rows.print(lines, INDENT);
        });
        lines.printNotes();
    }

    /** Returns the tags by outcome, under headings; empty groups are left out. */
    public Map<String, TagRows> groups() {
        Map<String, TagRows> groups = new LinkedHashMap<>();
        groups.put("read", rows(reading -> reading.is(Outcome.FOUND)));
        groups.put("overridden by the composition", hidden());
        groups.put("of a wrong type, so the default applies", defaults(Outcome.WRONG_TYPE));
        groups.put("absent, so the default applies", defaults(Outcome.ABSENT));
        groups.put("in no table, so the default applies", defaults(Outcome.UNKNOWN));
        groups.put("read in other frames only", rows(reading -> reading.is(Outcome.NEVER_READ)
                && mReadings.over(reading) == null && !mCheck.isNeverRead(reading)));
        groups.put("never read", rows(mCheck::isNeverRead));
        groups.values().removeIf(TagRows::isEmpty);
        return groups;
    }

    private TagRows rows(Predicate<Reading> wanted) {
        TagRows rows = new TagRows();
        mReadings.all().stream().filter(wanted)
                .forEach(reading -> rows.add(reading.tag(), reading.frame(), reading.text()));
        return rows;
    }

    private TagRows hidden() {
        TagRows hidden = new TagRows();
        for (Reading reading : mReadings.all()) {
            Reading under = mReadings.under(reading);
            if (under != null && !reading.is(Outcome.NEVER_READ)) {
                hidden.add(reading.tag(), reading.frame(), reading.value() + " overrides the capture result's "
                        + under.value());
            }
        }
        return hidden;
    }

    private TagRows defaults(Outcome outcome) {
        TagRows rows = new TagRows();
        for (Reading reading : mReadings.all()) {
            if (reading.is(outcome)) {
                String held = outcome == Outcome.WRONG_TYPE ? reading.text() + ": " : "";
                rows.add(reading.tag(), reading.frame(), held + defaults(reading));
            }
        }
        return rows;
    }

    // Describes the parameters that another value of the tag would change, with their present values.
    private String defaults(Reading reading) {
        Set<String> alone = new HashSet<>();
        Set<String> names = new TreeSet<>();
        for (Dependence tag : mDependences.of(reading.frame(), reading.tag())) {
            alone.addAll(tag.parameters());
            names.addAll(tag.together());
        }
        names.addAll(alone);
        if (names.size() > mParameters.size() / 2) {
            return "another value changes most parameters";
        }
        if (names.isEmpty()) {
            return mDependences.problem().isEmpty() ? "no tested value changes a parameter" : "not tested";
        }
        return String.join(", ", names.stream().map(name -> value(name)
                + (alone.contains(name) ? "" : Explanations.TOGETHER)).toList());
    }

    private String value(String name) {
        Parameter parameter = mParameters.get(name);
        if (name.equals(Dependences.ALGORITHMS)) {
            return "the algorithm list";
        }
        String text = parameter == null ? " not passed" : " = " + parameter.text();
        return Handover.shortName(name) + text;
    }
}
