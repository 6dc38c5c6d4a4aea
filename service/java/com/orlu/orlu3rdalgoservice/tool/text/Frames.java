package com.orlu.orlu3rdalgoservice.tool.text;

import java.util.ArrayList;
import java.util.Collection;
import java.util.List;
import java.util.TreeSet;

/** Formats frame numbers as text. */
public final class Frames {
    private static final int SHORTEST_RUN = 3;

    private Frames() {
    }

    /** Returns text such as "frame 3", "frames 0 to 6" or "frames 0, 2 to 4, 9". */
    public static String text(Collection<Integer> frames) {
        List<Integer> sorted = List.copyOf(new TreeSet<>(frames));
        List<String> parts = new ArrayList<>();
        for (int start = 0; start < sorted.size();) {
            int end = start + 1;
            while (end < sorted.size() && sorted.get(end) == sorted.get(end - 1) + 1) {
                ++end;
            }
            if (end - start < SHORTEST_RUN) {
                end = start + 1;
            }
            parts.add(end - start == 1 ? sorted.get(start).toString()
                    : sorted.get(start) + " to " + sorted.get(end - 1));
            start = end;
        }
        return (sorted.size() == 1 ? "frame " : "frames ") + String.join(", ", parts);
    }
}
