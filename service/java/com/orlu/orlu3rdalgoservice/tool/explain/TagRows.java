package com.orlu.orlu3rdalgoservice.tool.explain;

import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;

/** Lines of a table about tags. Frames with the same text share a line. */
public final class TagRows {
    /** A text about a tag. `frames` lists the frames that it applies to, such as "frames 0-3,5". */
    public record Row(String tag, String frames, String text) {
    }

    // Maps each tag to its texts, and each text to its frames.
    private final Map<String, Map<String, List<Integer>>> mRows = new TreeMap<>();

    void add(String tag, int frame, String text) {
        mRows.computeIfAbsent(tag, key -> new LinkedHashMap<>())
                .computeIfAbsent(text, key -> new ArrayList<>()).add(frame);
    }

    public boolean isEmpty() {
        return mRows.isEmpty();
    }

    /** Returns all rows, sorted by tag. */
    public List<Row> rows() {
        List<Row> rows = new ArrayList<>();
        mRows.forEach((tag, texts) ->
                texts.forEach((text, frames) -> rows.add(new Row(tag, frames(frames), text))));
        return rows;
    }

    /** Returns the number of tags. */
    int size() {
        return mRows.size();
    }

    /** Prints each tag on a line, and the texts about its frames below. */
    void print(TextLayout to, String indent) {
        mRows.forEach((tag, texts) -> {
            to.plain(indent + tag);
            texts.forEach((text, frames) -> to.plain(indent + "  %-11s  %s".formatted(frames(frames), text)));
        });
    }

    private static String frames(List<Integer> frames) {
        StringBuilder text = new StringBuilder();
        for (int i = 0; i < frames.size(); ++i) {
            int first = i;
            while (i + 1 < frames.size() && frames.get(i + 1) == frames.get(i) + 1) {
                ++i;
            }
            text.append(text.isEmpty() ? "" : ",").append(frames.get(first));
            text.append(i > first ? "-" + frames.get(i) : "");
        }
        return (frames.size() == 1 ? "frame " : "frames ") + text;
    }
}
