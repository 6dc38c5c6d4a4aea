package com.orlu.orlu3rdalgoservice.tool.compare;

import com.google.gson.JsonElement;

import com.orlu.orlu3rdalgoservice.tool.model.RunRecord;
import com.orlu.orlu3rdalgoservice.tool.text.Frames;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;

/** What two runs were given differently: settings, images, and tags, each with all frames. */
final class GivenNotes {
    private static final int MOST_TAGS = 12;

    private final RunRecord mOne;
    private final RunRecord mOther;
    private final List<String> mLines = new ArrayList<>();

    GivenNotes(RunRecord one, RunRecord other) {
        mOne = one;
        mOther = other;
    }

    List<String> lines() {
        if (mOne.folder() != null && mOther.folder() != null) {
            addSettings();
            addInputs();
        }
        List<List<GivenTag>> tags = grouped(GivenTag.of(mOne, mOther));
        tags.stream().limit(MOST_TAGS).forEach(tag -> mLines.add(line(tag)));
        if (tags.size() > MOST_TAGS) {
            mLines.add("and " + (tags.size() - MOST_TAGS) + " other tags given differ");
        }
        return mLines;
    }

    /** The same tag of several frames in one list, in the order of the first. */
    static List<List<GivenTag>> grouped(List<GivenTag> tags) {
        Map<String, List<GivenTag>> byTag = new LinkedHashMap<>();
        for (GivenTag tag : tags) {
            byTag.computeIfAbsent(tag.source() + " " + tag.tag(), key -> new ArrayList<>()).add(tag);
        }
        return new ArrayList<>(byTag.values());
    }

    /** "frames 0 to 6 TAG = ONE / OTHER"; of values that are others in each frame, the first frame's. */
    static String text(List<GivenTag> tag, String verb) {
        GivenTag first = tag.get(0);
        boolean isSame = tag.stream().allMatch(each -> each.text().equals(first.text()));
        return Frames.text(tag.stream().map(GivenTag::frame).toList()) + verb + " " + first.text()
                + (isSame ? "" : " in frame " + first.frame() + ", others in the rest");
    }

    private static String line(List<GivenTag> tag) {
        return text(tag, tag.size() == 1 ? " was given" : " were given");
    }

    private void addSettings() {
        Set<String> names = new LinkedHashSet<>(mOne.settings().keySet());
        names.addAll(mOther.settings().keySet());
        for (String name : names) {
            JsonElement one = mOne.settings().get(name);
            JsonElement other = mOther.settings().get(name);
            if (!Objects.equals(one, other)) {
                mLines.add("given " + name + " = " + (one == null ? "none" : one) + " / "
                        + (other == null ? "none" : other));
            }
        }
        if (mOne.frames().size() != mOther.frames().size()) {
            mLines.add("given frames: " + mOne.frames().size() + " / " + mOther.frames().size());
        }
    }

    // Pixels are told apart by their checks.
    private void addInputs() {
        int common = Math.min(mOne.inputs().size(), mOther.inputs().size());
        if (mOne.inputs().size() != mOther.inputs().size()) {
            mLines.add("given inputs: " + mOne.inputs().size() + " / " + mOther.inputs().size());
        }
        List<Integer> differ = new ArrayList<>();
        for (int i = 0; i < common; ++i) {
            JsonElement one = mOne.inputs().get(i).part().get("crc");
            JsonElement other = mOther.inputs().get(i).part().get("crc");
            if (one != null && other != null && !one.equals(other)) {
                differ.add(i);
            }
            if (!mOne.inputs().get(i).text().equals(mOther.inputs().get(i).text())) {
                mLines.add("given input " + i + ": " + mOne.inputs().get(i).text() + " / "
                        + mOther.inputs().get(i).text());
            }
        }
        if (!differ.isEmpty()) {
            mLines.add("given other pixels in input "
                    + Frames.text(differ).replaceFirst("^frames? ", ""));
        }
    }
}
