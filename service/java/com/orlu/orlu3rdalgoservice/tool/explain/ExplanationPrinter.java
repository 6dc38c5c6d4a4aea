package com.orlu.orlu3rdalgoservice.tool.explain;

import com.orlu.orlu3rdalgoservice.tool.events.Call;
import com.orlu.orlu3rdalgoservice.tool.explain.SourceLines.Place;
import com.orlu.orlu3rdalgoservice.tool.report.Handover;
import com.orlu.orlu3rdalgoservice.tool.report.LinePrinter;
import com.orlu.orlu3rdalgoservice.tool.report.Parameter;
import com.orlu.orlu3rdalgoservice.tool.report.RequestReport;
import com.orlu.orlu3rdalgoservice.tool.trial.Dependence;
import com.orlu.orlu3rdalgoservice.tool.trial.Dependences;

import java.util.LinkedHashSet;
import java.util.List;
import java.util.Set;
import java.util.stream.IntStream;

/** Prints who wrote a parameter, and which tags it depends on. */
public final class ExplanationPrinter {
    private static final String ALL = "all";
    private static final String INDENT = " ".repeat(14);

    private final Handover mHandover;
    private final Dependences mDependences;
    private final Readings mReadings;
    private final SourceLines mSource;
    private final LinePrinter mLines;
    private final List<Place> mPlaces;
    /** Every name that the request wrote. */
    private final Set<String> mNames = new LinkedHashSet<>();

    public ExplanationPrinter(RequestReport report, SourceLines source, LinePrinter lines) {
        mHandover = report.handover();
        mDependences = report.dependences;
        mReadings = Readings.of(report);
        mSource = source;
        mLines = lines;
        List<Call> calls = report.events.calls("setValue");
        mPlaces = source.of(calls, mHandover.parameters().stream().map(Parameter::fullName).toList());
        mHandover.parameters().forEach(parameter -> mNames.add(parameter.fullName()));
        mNames.add(Dependences.ALGORITHMS);
    }

    /** Explains what the words name: a key, a section and a key, "algorithms", or "all" that was written. */
    public void print(List<String> words) {
        Set<String> possible = new LinkedHashSet<>(mNames);
        mDependences.all().forEach(tag -> possible.addAll(tag.parameters()));
        Set<String> shown = new LinkedHashSet<>();
        for (String word : words) {
            List<String> named = word.equals(ALL) ? List.copyOf(mNames)
                    : possible.stream().filter(name -> isNamed(name, word)).toList();
            if (named.isEmpty()) {
                printUnknown(word, possible);
            }
            shown.addAll(named);
        }
        for (String name : shown) {
            mLines.plain("explain  " + Handover.shortName(name)
                    + (mNames.contains(name) ? "" : ": not handed over"));
            printWrites(name);
            printTags(name);
            mLines.plain("");
        }
        if (!shown.isEmpty()) {
            printGeneral();
        }
        printEnd();
    }

    private void printUnknown(String word, Set<String> possible) {
        mLines.plain("explain  " + word + ": not handed over, whatever value tags have");
        List<String> near = possible.stream().filter(name -> name.toLowerCase().contains(word.toLowerCase()))
                .map(Handover::shortName).toList();
        if (!near.isEmpty()) {
            mLines.list("perhaps", near);
        }
    }

    private static boolean isNamed(String name, String word) {
        return name.equals(word) || name.endsWith("/" + word) || name.equals(Handover.SECTION_PREFIX + word);
    }

    private void printWrites(String name) {
        if (name.equals(Dependences.ALGORITHMS)) {
            mLines.list("is", mHandover.process() == null ? List.of("handed to nobody")
                    : mHandover.algorithms());
            return;
        }
        int[] writes = IntStream.range(0, mPlaces.size())
                .filter(i -> mHandover.parameters().get(i).fullName().equals(name)).toArray();
        for (int i : writes) {
            Parameter parameter = mHandover.parameters().get(i);
            boolean isReplaced = mHandover.isReplaced(i);
            mLines.line(isReplaced ? "replaced" : "counts", parameter.text() + " (" + parameter.type() + ")");
            mLines.line("", "by " + (mPlaces.get(i) == null ? "an unknown line" : mPlaces.get(i).text()));
        }
    }

    private void printTags(String name) {
        if (mDependences.unsteady().contains(name)) {
            mLines.line("depends on", "what changes by itself: no two translations agree");
            return;
        }
        TagRows rows = new TagRows();
        mDependences.of(name).stream().filter(tag -> !isGeneral(tag)).forEach(tag -> rows.add(tag.tag(),
                tag.frame(), text(tag) + (tag.parameters().contains(name) ? "" : " (all frames together)")));
        if (!rows.isEmpty()) {
            mLines.line("depends on", rows.size() == 1 ? "this tag" : "these " + rows.size() + " tags");
            rows.print(mLines, INDENT);
        } else if (mDependences.problem().isEmpty()) {
            mLines.line("depends on", "no tag of its own: fixed, or of the request or its images");
        }
    }

    private String text(Dependence tag) {
        Reading reading = mReadings.of(tag);
        return reading == null ? "asked for in trials only" : reading.text();
    }

    // Of a tag that changes nearly everything each parameter would have to name it.
    private boolean isGeneral(Dependence tag) {
        return tag.parameters().size() > mNames.size() / 2;
    }

    private void printGeneral() {
        TagRows rows = new TagRows();
        mDependences.all().stream().filter(this::isGeneral)
                .forEach(tag -> rows.add(tag.tag(), tag.frame(), text(tag)));
        if (!rows.isEmpty()) {
            mLines.plain("explain  most parameters depend on");
            rows.print(mLines, INDENT);
        }
    }

    private void printEnd() {
        if (!mDependences.problem().isEmpty()) {
            mLines.plain("  (tags are not known, or not all: " + mDependences.problem() + ")");
        } else {
            mLines.plain("  (found by %d trials in %.1f s: docs/explain.md says what they can miss)"
                    .formatted(mDependences.trials(), mDependences.seconds()));
        }
        if (!mSource.problem().isEmpty()) {
            mLines.plain("  (lines of source are missing: " + mSource.problem() + ")");
        }
        mLines.printNotes();
    }
}
