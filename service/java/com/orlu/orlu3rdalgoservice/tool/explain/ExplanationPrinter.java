package com.orlu.orlu3rdalgoservice.tool.explain;

import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.util.LinkedHashSet;
import java.util.List;
import java.util.Set;

/** Prints which code wrote a parameter and which tags it depends on. */
public final class ExplanationPrinter {
    private static final String ALL = "all";
    private static final String INDENT = " ".repeat(14);

    private final Explanations mExplanations;
    private final SourceLines mSource;
    private final TextLayout mLines;

    public ExplanationPrinter(Run run, Dependences dependences, SourceLines source, TextLayout lines) {
        mExplanations = new Explanations(run, dependences, source);
        mSource = source;
        mLines = lines;
    }

    /**
     * Explains the parameters that each word names: "KEY", "SECTION/KEY", "algorithms", or "all" for every
     * written parameter and the algorithms.
     */
    public void print(List<String> words) {
        Set<String> names = mExplanations.names();
        Set<String> possible = mExplanations.possibleNames();
        Set<String> shown = new LinkedHashSet<>();
        for (String word : words) {
            List<String> named = word.equals(ALL) ? List.copyOf(names)
                    : possible.stream().filter(name -> isNamed(name, word)).toList();
            if (named.isEmpty()) {
                printUnknown(word, possible);
            }
            shown.addAll(named);
        }
        for (String name : shown) {
            mLines.plain("explain  " + Handover.shortName(name)
                    + (names.contains(name) ? "" : ": not passed"));
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
        mLines.plain("explain  " + word + ": never passed, whatever the values of the tags");
        List<String> near = possible.stream().filter(name -> name.toLowerCase().contains(word.toLowerCase()))
                .map(Handover::shortName).toList();
        if (!near.isEmpty()) {
            mLines.list("perhaps", near);
            return;
        }
        // Compares a word that contains a section with SECTION/KEY, any other word with KEY alone.
        String nearest = NearestWord.of(word, possible.stream().map(Handover::shortName)
                .map(name -> word.contains("/") ? name : name.replaceFirst(".*/", "")).toList());
        if (nearest != null) {
            mLines.line("perhaps", nearest);
        }
    }

    private static boolean isNamed(String name, String word) {
        return name.equals(word) || name.endsWith("/" + word) || name.equals(Handover.SECTION_PREFIX + word);
    }

    private void printWrites(String name) {
        Handover handover = mExplanations.handover();
        if (name.equals(Dependences.ALGORITHMS)) {
            mLines.list("is", handover.process() == null ? List.of("not passed on")
                    : handover.algorithms());
            return;
        }
        for (Explanations.Write write : mExplanations.writes(name)) {
            Parameter parameter = write.parameter();
            mLines.line(write.isReplaced() ? "replaced" : "counts",
                    parameter.text() + " (" + parameter.type() + ")");
            mLines.line("", "by " + write.place());
        }
    }

    private void printTags(String name) {
        if (mExplanations.isUnsteady(name)) {
            mLines.line("depends on", "a value that changes with each translation");
            return;
        }
        TagRows rows = mExplanations.tags(name);
        if (!rows.isEmpty()) {
            mLines.line("depends on", rows.size() == 1 ? "this tag" : "these " + rows.size() + " tags");
            rows.print(mLines, INDENT);
        } else if (mExplanations.problem().isEmpty()) {
            mLines.line("depends on", "no tag: fixed, or from the request or its images");
        }
    }

    private void printGeneral() {
        TagRows rows = mExplanations.generalTags();
        if (!rows.isEmpty()) {
            mLines.plain("explain  most parameters depend on");
            rows.print(mLines, INDENT);
        }
    }

    private void printEnd() {
        if (!mExplanations.problem().isEmpty()) {
            mLines.plain("  (tags unknown or incomplete: " + mExplanations.problem() + ")");
        } else {
            mLines.plain("  (" + mExplanations.effort() + ")");
        }
        if (!mSource.problem().isEmpty()) {
            mLines.plain("  (source lines are missing: " + mSource.problem() + ")");
        }
        mLines.printNotes();
    }
}
