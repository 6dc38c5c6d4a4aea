package com.orlu.orlu3rdalgoservice.tool.compare;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.request.RecordedFile;
import com.orlu.orlu3rdalgoservice.tool.text.Frames;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;

/** The differences between two runs' inputs: settings, images, and tags, each tag with all its frames. */
final class GivenNotes {
    private static final int MOST_TAGS = 12;

    private final Run mOne;
    private final Run mOther;
    private final List<String> mLines = new ArrayList<>();

    GivenNotes(Run one, Run other) {
        mOne = one;
        mOther = other;
    }

    List<String> lines() throws MistakeException {
        if (mOne.folder() != null && mOther.folder() != null) {
            addSettings();
            addInputs();
        }
        List<List<GivenTag>> tags = grouped(GivenTag.of(mOne, mOther));
        tags.stream().limit(MOST_TAGS).forEach(tag -> mLines.add(line(tag)));
        if (tags.size() > MOST_TAGS) {
            mLines.add("and " + (tags.size() - MOST_TAGS) + " more tags differ");
        }
        return mLines;
    }

    /** Groups the entries by tag, in the order of each tag's first entry. */
    static List<List<GivenTag>> grouped(List<GivenTag> tags) {
        Map<String, List<GivenTag>> byTag = new LinkedHashMap<>();
        for (GivenTag tag : tags) {
            byTag.computeIfAbsent(tag.source() + " " + tag.tag(), key -> new ArrayList<>()).add(tag);
        }
        return new ArrayList<>(byTag.values());
    }

    /**
     * Returns text such as "frames 0 to 6 were given TAG = ONE / OTHER"; `verb` is " was given", " were
     * given" or "". If the values vary by frame, the text has the first frame's values.
     */
    static String text(List<GivenTag> tag, String verb) {
        GivenTag first = tag.get(0);
        boolean isSame = tag.stream().allMatch(each -> each.text().equals(first.text()));
        return Frames.text(tag.stream().map(GivenTag::frame).toList()) + verb + " " + first.text()
                + (isSame ? "" : " in frame " + first.frame() + "; other frames have other values");
    }

    private static String line(List<GivenTag> tag) {
        return text(tag, tag.size() == 1 ? " was given" : " were given");
    }

    private void addSettings() throws MistakeException {
        Map<String, Json> one = mOne.settings();
        Map<String, Json> other = mOther.settings();
        Set<String> names = new LinkedHashSet<>(one.keySet());
        names.addAll(other.keySet());
        for (String name : names) {
            String left = text(one.get(name));
            String right = text(other.get(name));
            if (!left.equals(right)) {
                mLines.add("given " + name + " = " + left + " / " + right);
            }
        }
        if (mOne.frames().size() != mOther.frames().size()) {
            mLines.add("given frames: " + mOne.frames().size() + " / " + mOther.frames().size());
        }
    }

    private static String text(Json value) {
        return value == null ? "none" : JsonWriter.line(value);
    }

    // Pixels are compared by checksum.
    private void addInputs() {
        int common = Math.min(mOne.inputs().size(), mOther.inputs().size());
        if (mOne.inputs().size() != mOther.inputs().size()) {
            mLines.add("given inputs: " + mOne.inputs().size() + " / " + mOther.inputs().size());
        }
        List<Integer> differ = new ArrayList<>();
        for (int i = 0; i < common; ++i) {
            RecordedFile one = mOne.inputs().get(i).file();
            RecordedFile other = mOther.inputs().get(i).file();
            if (one != null && other != null && !one.crc().equals(other.crc())) {
                differ.add(i);
            }
            if (!mOne.inputs().get(i).text().equals(mOther.inputs().get(i).text())) {
                mLines.add("given input " + i + ": " + mOne.inputs().get(i).text() + " / "
                        + mOther.inputs().get(i).text());
            }
        }
        if (!differ.isEmpty()) {
            mLines.add("given different pixels in input "
                    + Frames.text(differ).replaceFirst("^frames? ", ""));
        }
    }
}
