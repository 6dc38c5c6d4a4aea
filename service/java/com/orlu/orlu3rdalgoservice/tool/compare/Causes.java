package com.orlu.orlu3rdalgoservice.tool.compare;

import com.orlu.orlu3rdalgoservice.tool.model.Dependence;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.text.Frames;

import java.util.ArrayList;
import java.util.Comparator;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;

/**
 * Finds the tags that explain why a parameter differs between two runs. Such a tag differs between the runs,
 * and the parameter depends on it in at least one run.
 */
public final class Causes {
    private static final int SHOWN = 3;

    private record Place(int frame, String source, String tag) {
    }

    private final List<GivenTag> mGiven;
    private final List<Dependences> mRuns;
    /** For each tag that trials tested: its dependences, one from each run whose trials tested it. */
    private final Map<Place, List<Dependence>> mTags = new HashMap<>();

    /** `given` lists the tags that differ between the runs; `runs` lists the trial results of each run. */
    public Causes(List<GivenTag> given, List<Dependences> runs) {
        mGiven = given;
        mRuns = runs;
        for (Dependences run : runs) {
            for (Dependence tag : run.all()) {
                mTags.computeIfAbsent(new Place(tag.frame(), tag.source(), tag.tag()),
                        place -> new ArrayList<>()).add(tag);
            }
        }
    }

    /**
     * Returns up to three lines, each with one tag that explains the difference and the tag's frames. If
     * there are more such tags, a fourth line contains their number. Tags that change the fewest parameters
     * come first. If no tag explains the difference, returns one line. It reports that the parameter changes
     * with each translation, or lists tags that the parameter depends on.
     */
    public List<String> lines(Difference difference) {
        String name = difference.parameter();
        List<List<GivenTag>> tags = GivenNotes.grouped(mGiven.stream().filter(tag -> changes(tag, name))
                .sorted(Comparator.comparingInt(this::reach)).toList());
        List<String> lines = new ArrayList<>();
        for (List<GivenTag> tag : tags.subList(0, Math.min(SHOWN, tags.size()))) {
            lines.add("because of " + GivenNotes.text(tag, ""));
        }
        if (tags.size() > SHOWN) {
            lines.add("and " + (tags.size() - SHOWN) + " more tags");
        }
        if (tags.isEmpty()) {
            lines.add(isUnsteady(name)
                    ? Handover.shortName(name) + " changes with each translation"
                    : "no differing tag explains it; " + dependsOn(name));
        }
        return lines;
    }

    /** Returns true if a differing tag or a change with each translation explains the difference. */
    public boolean explain(Difference difference) {
        String name = difference.parameter();
        return isUnsteady(name) || mGiven.stream().anyMatch(tag -> changes(tag, name));
    }

    private boolean isUnsteady(String parameter) {
        return mRuns.stream().anyMatch(run -> run.unsteady().contains(parameter));
    }

    // Returns text that lists tags that a parameter depends on. These tags may be equal in both runs.
    private String dependsOn(String name) {
        Map<String, Set<Integer>> tags = new LinkedHashMap<>();
        mRuns.stream().flatMap(run -> run.of(name).stream())
                .sorted(Comparator.comparingInt(tag -> tag.parameters().size()))
                .forEach(tag -> tags.computeIfAbsent(tag.tag(), key -> new TreeSet<>()).add(tag.frame()));
        if (tags.isEmpty()) {
            return problem().isEmpty() ? "it depends on no tag of any frame"
                    : "the tags that it depends on are unknown";
        }
        List<String> found = new ArrayList<>();
        tags.forEach((tag, frames) -> found.add(Frames.text(frames) + " " + tag));
        return "it depends on " + String.join(", ", found.subList(0, Math.min(SHOWN, found.size())))
                + (found.size() > SHOWN ? " and " + (found.size() - SHOWN) + " more tags" : "");
    }

    /** Returns why the trials are unreliable; "" if they are reliable. */
    public String problem() {
        return mRuns.stream().map(Dependences::problem).filter(problem -> !problem.isEmpty()).findFirst()
                .orElse("");
    }

    private List<Dependence> inRuns(GivenTag tag) {
        return mTags.getOrDefault(new Place(tag.frame(), tag.source(), tag.tag()), List.of());
    }

    private boolean changes(GivenTag tag, String parameter) {
        return inRuns(tag).stream().anyMatch(
                each -> each.parameters().contains(parameter) || each.together().contains(parameter));
    }

    private int reach(GivenTag tag) {
        return inRuns(tag).stream().mapToInt(each -> each.parameters().size()).max().orElse(0);
    }
}
