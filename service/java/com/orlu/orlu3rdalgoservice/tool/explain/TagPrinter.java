package com.orlu.orlu3rdalgoservice.tool.explain;

import com.orlu.orlu3rdalgoservice.tool.explain.Reading.Outcome;
import com.orlu.orlu3rdalgoservice.tool.report.Handover;
import com.orlu.orlu3rdalgoservice.tool.report.LinePrinter;
import com.orlu.orlu3rdalgoservice.tool.report.Parameter;
import com.orlu.orlu3rdalgoservice.tool.report.RequestReport;
import com.orlu.orlu3rdalgoservice.tool.trial.Dependence;
import com.orlu.orlu3rdalgoservice.tool.trial.Dependences;

import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Predicate;

/** Prints what became of each frame's tags. */
public final class TagPrinter {
    private static final String INDENT = "  ";

    private final Readings mReadings;
    private final TagCheck mCheck;
    private final Dependences mDependences;
    private final LinePrinter mLines;
    // The last value of each parameter, which counts.
    private final Map<String, Parameter> mParameters = new LinkedHashMap<>();

    public TagPrinter(RequestReport report, LinePrinter lines) {
        mReadings = Readings.of(report);
        mCheck = new TagCheck(mReadings);
        mDependences = report.dependences;
        mLines = lines;
        report.handover().parameters().forEach(parameter -> mParameters.put(parameter.fullName(), parameter));
    }

    /** Prints a heading and rows for each way that a tag can go; one that no tag went is left out. */
    public void print() {
        print("read", reading -> reading.is(Outcome.FOUND));
        TagRows hidden = new TagRows();
        for (Reading reading : mReadings.all()) {
            Reading under = mReadings.under(reading);
            if (under != null && !reading.is(Outcome.NEVER_READ)) {
                hidden.add(reading.tag(), reading.frame(), reading.value() + " over the capture result's "
                        + under.value());
            }
        }
        print("put over by the composition", hidden);
        printDefaults("of a wrong type, so that the default stands", Outcome.WRONG_TYPE);
        printDefaults("absent, so that the default stands", Outcome.ABSENT);
        printDefaults("known to no table, so that the default stands", Outcome.UNKNOWN);
        print("read of other frames only", reading -> reading.is(Outcome.NEVER_READ)
                && mReadings.over(reading) == null && !mCheck.isNeverRead(reading));
        print("never read", mCheck::isNeverRead);
        mLines.printNotes();
    }

    private void print(String heading, Predicate<Reading> wanted) {
        TagRows rows = new TagRows();
        mReadings.all().stream().filter(wanted)
                .forEach(reading -> rows.add(reading.tag(), reading.frame(), reading.text()));
        print(heading, rows);
    }

    private void print(String heading, TagRows rows) {
        if (!rows.isEmpty()) {
            mLines.plain("tags " + heading + ": " + rows.size());
            rows.print(mLines, INDENT);
        }
    }

    private void printDefaults(String heading, Outcome outcome) {
        TagRows rows = new TagRows();
        for (Reading reading : mReadings.all()) {
            if (reading.is(outcome)) {
                String held = outcome == Outcome.WRONG_TYPE ? reading.text() + ": " : "";
                rows.add(reading.tag(), reading.frame(), held + defaults(reading));
            }
        }
        print(heading, rows);
    }

    // The parameters that another value would change, as they are.
    private String defaults(Reading reading) {
        List<Dependence> tags = mDependences.of(reading.frame(), reading.tag());
        List<String> names =
                tags.stream().flatMap(tag -> tag.parameters().stream()).distinct().sorted().toList();
        if (names.size() > mParameters.size() / 2) {
            return "another value changes most parameters";
        }
        if (names.isEmpty()) {
            return mDependences.problem().isEmpty() ? "no value tried changes a parameter" : "not tried";
        }
        return String.join(", ", names.stream().map(this::value).toList());
    }

    private String value(String name) {
        Parameter parameter = mParameters.get(name);
        if (name.equals(Dependences.ALGORITHMS)) {
            return "the algorithm list";
        }
        String text = parameter == null ? " not handed over" : " = " + parameter.text();
        return Handover.shortName(name) + text;
    }
}
