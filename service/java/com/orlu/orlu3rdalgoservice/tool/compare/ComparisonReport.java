package com.orlu.orlu3rdalgoservice.tool.compare;

import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.model.RunFolder;
import com.orlu.orlu3rdalgoservice.tool.run.ChildRun;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.stream.Collectors;

/** Compares two runs and prints the differences, the tags that cause them, and what could not be compared. */
public final class ComparisonReport {
    private static final int SHOWN = 20;
    /** If more tags than this differ, trials cover all tags: a list would make the command line long. */
    private static final int FEW = 50;

    /**
     * The options of a comparison.
     *
     * @param ignored   names of parameters, results, calls and outputs to ignore
     * @param tolerance the largest difference of numbers and samples that counts as equal
     * @param out       the folder for pictures of differing outputs; null for none
     * @param explains  whether to find the tags that cause a difference
     */
    public record Options(List<String> ignored, double tolerance, Path out, boolean explains) {
    }

    private final Options mOptions;
    private final Run mOne;
    private final Run mOther;
    private final List<GivenTag> mGiven;
    private final PrintStream mPrinted;
    private final TextLayout mTo;

    public ComparisonReport(Options options, Run one, Run other, PrintStream to) {
        mOptions = options;
        mPrinted = to;
        mTo = new TextLayout(to, TextLayout.REPORT);
        mOne = one;
        mOther = other;
        mGiven = GivenTag.of(one, other);
    }

    /** Prints the comparison under this title. Returns the differences. */
    public List<Difference> print(String title) throws MistakeException, IOException {
        String name = Path.of(mOne.name()).getFileName().toString()
                .replaceFirst("(\\.json)?( with .*)?$", "");
        Comparison comparison = new Comparison(mOne, mOther, new HashSet<>(mOptions.ignored()),
                mOptions.tolerance(), new OutputComparison(mOptions.out(), name));
        List<Difference> differences = comparison.differences();
        boolean canComeFromTags = differences.stream().anyMatch(Difference::canComeFromTags);
        List<Difference> shown = differences.subList(0, Math.min(SHOWN, differences.size()));
        Causes causes = mOptions.explains() && canComeFromTags && hasFrames() ? causes(shown) : null;
        mPrinted.println(Printable.line(title) + ": " + (differences.isEmpty() ? "equal" : "different") + ", "
                + comparison.compared());
        for (Difference difference : shown) {
            mTo.print(2, difference.text());
            if (causes != null && difference.canComeFromTags()) {
                causes.lines(difference).forEach(line -> mTo.print(4, line));
            }
        }
        if (differences.size() > SHOWN) {
            mTo.print(2, "and " + (differences.size() - SHOWN) + " more differences");
        }
        comparison.notes().forEach(this::note);
        if (canComeFromTags && !hasFrames()) {
            note("events alone don't show which tags cause differences");
        } else if (canComeFromTags && mGiven.isEmpty()) {
            note("no tag differs; check the library, properties, the number of frames and the images");
        }
        if (causes != null && !causes.problem().isEmpty()) {
            note("tags unknown or incomplete: " + causes.problem());
        }
        return differences;
    }

    private void note(String text) {
        mTo.print(2, "note: " + text);
    }

    private boolean hasFrames() {
        return mOne.folder() != null && mOther.folder() != null;
    }

    private static Dependences trials(Path request, Set<String> only) throws IOException {
        try {
            return Dependences.read(new ChildRun("trials", false, null).trials(request, only)).get(0);
        } catch (IllegalStateException e) {
            return Dependences.unknown(Printable.message(e));
        }
    }

    // The tags that differ usually explain every difference. Trials of all tags take much longer.
    private Causes causes(List<Difference> shown) throws IOException {
        Set<String> differing = mGiven.stream().map(GivenTag::tag).collect(Collectors.toSet());
        if (!differing.isEmpty() && differing.size() <= FEW) {
            Causes causes = causes(differing);
            if (shown.stream().filter(Difference::canComeFromTags).allMatch(causes::explain)) {
                return causes;
            }
        }
        return causes(Set.of());
    }

    // A tag may matter in only one of the runs, so both need trials. If no tag differs, one run suffices.
    private Causes causes(Set<String> only) throws IOException {
        List<Dependences> found = new ArrayList<>();
        for (Run run : mGiven.isEmpty() ? List.of(mOne) : List.of(mOne, mOther)) {
            Progress.show("testing what each tag of " + run.name() + " changes");
            found.add(trials(run.folder().resolve(RunFolder.REQUEST), only));
        }
        Progress.end();
        return new Causes(mGiven, found);
    }
}
