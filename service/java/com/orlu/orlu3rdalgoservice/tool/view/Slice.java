package com.orlu.orlu3rdalgoservice.tool.view;

import java.util.Map;

/**
 * A span of one thread.
 *
 * @param tid   the kernel's id of the thread, shown as the lane
 * @param start by System.nanoTime(), like `end`
 * @param args  what a viewer shows if the span is selected
 */
record Slice(String name, String category, int tid, long start, long end, Map<String, Object> args) {
    boolean contains(long time) {
        return start <= time && time <= end;
    }

    Slice endingAt(long time) {
        return new Slice(name, category, tid, start, time, args);
    }
}
