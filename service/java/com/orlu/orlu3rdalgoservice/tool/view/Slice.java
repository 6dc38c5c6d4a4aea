package com.orlu.orlu3rdalgoservice.tool.view;

import java.util.Map;

/**
 * A stretch of time in which a thread did one thing.
 *
 * @param tid   the kernel's number of the thread, whose lane the slice is in
 * @param start by System.nanoTime(), as the end
 * @param args  what a viewer shows when the slice is selected
 */
record Slice(String name, String category, int tid, long start, long end, Map<String, Object> args) {
    boolean contains(long time) {
        return start <= time && time <= end;
    }

    Slice endingAt(long time) {
        return new Slice(name, category, tid, start, time, args);
    }
}
