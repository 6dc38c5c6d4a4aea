package com.orlu.orlu3rdalgoservice.tool.compare;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.Run;

import java.util.ArrayList;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;

/**
 * A tag of one frame with different values in two runs.
 *
 * @param source "captureResult" or "composition"
 * @param one    the first run's value as in a recording, shortened if long; "none" if absent
 * @param other  the second run's value
 */
public record GivenTag(int frame, String source, String tag, String one, String other) {
    private static final int LONGEST = 40;
    private static final int SHOWN_BEFORE = 15;

    /**
     * Returns the differing tags of the frames that both runs have, ordered by frame. The list is empty if a
     * run has only events.
     */
    public static List<GivenTag> of(Run one, Run other) {
        List<GivenTag> tags = new ArrayList<>();
        for (int frame = 0; frame < Math.min(one.frames().size(), other.frames().size()); ++frame) {
            for (String source : List.of("captureResult", "composition")) {
                addDiffering(tags, frame, source, one.frames().get(frame).get(source).entries(),
                        other.frames().get(frame).get(source).entries());
            }
        }
        return tags;
    }

    private static void addDiffering(
            List<GivenTag> tags, int frame, String source, Map<String, Json> one, Map<String, Json> other) {
        Set<String> names = new LinkedHashSet<>(one.keySet());
        names.addAll(other.keySet());
        names.removeIf(name -> text(one, name).equals(text(other, name)));
        for (String name : names) {
            String value = text(one, name);
            String counterpart = text(other, name);
            int from = start(value, counterpart);
            tags.add(new GivenTag(frame, source, name, cut(value, from), cut(counterpart, from)));
        }
    }

    private static String text(Map<String, Json> values, String tag) {
        return values.containsKey(tag) ? JsonWriter.line(values.get(tag)) : "none";
    }

    // Returns the offset from which both values are shown: 0, or shortly before their first difference.
    private static int start(String one, String other) {
        int same = 0;
        while (same < Math.min(one.length(), other.length()) && one.charAt(same) == other.charAt(same)) {
            ++same;
        }
        return same < LONGEST - SHOWN_BEFORE ? 0 : same - SHOWN_BEFORE;
    }

    private static String cut(String text, int from) {
        int end = Math.min(text.length(), from + LONGEST);
        return (from > 0 ? "..." : "") + text.substring(from, end) + (end < text.length() ? "..." : "");
    }

    /** Returns "TAG = ONE / OTHER"; for a tag of the composition, adds ", composition". */
    public String text() {
        return tag + " = " + one + " / " + other + (source.equals("composition") ? ", composition" : "");
    }
}
