package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;

import java.util.ArrayDeque;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.Deque;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;

/**
 * A trace of one process in the JSON trace format: slices in one lane per thread, arrows between slices, and
 * counters. Omits events that begin outside its period.
 */
final class TraceFile {
    private static final double NANOSECONDS_PER_MICROSECOND = 1e3;

    private final long mPid;
    private final long mStart;
    private final long mEnd;
    private final Map<Integer, List<Slice>> mLanes = new TreeMap<>();
    private final List<Map<String, Object>> mEvents = new ArrayList<>();

    /** A point in time in a thread's lane. */
    record Point(int tid, long time) {
    }

    /**
     * A span of one thread.
     *
     * @param tid   the kernel's id of the thread, shown as the lane
     * @param start begin of the span, on the clock of System.nanoTime()
     * @param end   end of the span, on the same clock
     * @param args  details that viewers show when the span is selected
     */
    record Slice(String name, String category, int tid, long start, long end, Map<String, Object> args) {
        boolean contains(long time) {
            return start <= time && time <= end;
        }

        Slice endingAt(long time) {
            return new Slice(name, category, tid, start, time, args);
        }
    }

    /**
     * Creates an empty trace of a process, for a period on the clock of System.nanoTime(). Times in the trace
     * count from `start`.
     */
    TraceFile(long pid, long start, long end) {
        mPid = pid;
        mStart = start;
        mEnd = end;
        addMetadata("process_name", 0, "name", "post-processing service");
    }

    void add(Slice slice) {
        mLanes.computeIfAbsent(slice.tid(), tid -> new ArrayList<>()).add(slice);
    }

    /** Names and places a lane; lanes with a smaller index are further up. */
    void nameLane(int tid, String name, int index) {
        addMetadata("thread_name", tid, "name", name);
        addMetadata("thread_sort_index", tid, "sort_index", index);
    }

    /** Adds an arrow through at least two points, each inside a slice. */
    void addArrow(long id, List<Point> points) {
        for (int i = 0; i < points.size(); ++i) {
            boolean isLast = i == points.size() - 1;
            Map<String, Object> event = event(i == 0 ? "s" : isLast ? "f" : "t", "request", points.get(i)
                    .tid());
            event.put("cat", "request");
            event.put("id", id);
            event.put("ts", microseconds(points.get(i).time() - mStart));
            if (isLast) {
                event.put("bp", "e");
            }
            add(event, points.get(i).time());
        }
    }

    /** Adds a value of a process-wide counter. */
    void addCounter(String name, long time, long value) {
        Map<String, Object> event = event("C", name, 0);
        event.put("ts", microseconds(time - mStart));
        event.put("args", Map.of("value", value));
        add(event, time);
    }

    /** Returns all trace events. Call only once. */
    List<Map<String, Object>> events() {
        mLanes.values().forEach(this::addLane);
        return mEvents;
    }

    // Shortens each slice that ends after its enclosing slice, because viewers require the slices of a lane
    // to nest.
    private void addLane(List<Slice> slices) {
        Deque<Slice> around = new ArrayDeque<>();
        slices.sort(Comparator.comparingLong(Slice::start)
                .thenComparing(Comparator.comparingLong(Slice::end).reversed()));
        for (Slice slice : slices) {
            while (!around.isEmpty() && around.peek().end() <= slice.start()) {
                around.pop();
            }
            Slice nested = around.isEmpty() || slice.end() <= around.peek().end() ? slice
                    : slice.endingAt(around.peek().end());
            around.push(nested);
            addSlice(nested);
        }
    }

    private void addSlice(Slice slice) {
        Map<String, Object> event = event("X", slice.name(), slice.tid());
        event.putAll(JsonWriter.object("cat", slice.category(), "ts", microseconds(slice.start() - mStart),
                "dur", microseconds(slice.end() - slice.start()), "args", slice.args()));
        add(event, slice.start());
    }

    private void add(Map<String, Object> event, long time) {
        if (time >= mStart && time <= mEnd) {
            mEvents.add(event);
        }
    }

    private void addMetadata(String name, int tid, String argument, Object value) {
        Map<String, Object> event = event("M", name, tid);
        event.put("args", Map.of(argument, value));
        mEvents.add(event);
    }

    private Map<String, Object> event(String phase, String name, int tid) {
        return JsonWriter.object("ph", phase, "name", name, "pid", mPid, "tid", tid);
    }

    private static double microseconds(long nanoseconds) {
        return nanoseconds / NANOSECONDS_PER_MICROSECOND;
    }
}
