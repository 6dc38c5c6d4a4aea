package com.orlu.orlu3rdalgoservice.tool.view;

import com.google.gson.JsonArray;
import com.google.gson.JsonObject;

import java.util.ArrayDeque;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.Deque;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;

/** Slices in one lane for each thread of a process, and arrows between them, in the JSON trace format. */
final class TraceFile {
    private static final double NANOSECONDS_PER_MICROSECOND = 1e3;

    private final long mPid;
    private final long mOrigin;
    private final Map<Integer, List<Slice>> mLanes = new TreeMap<>();
    private final JsonArray mEvents = new JsonArray();

    /** A point in time in a thread's lane. */
    record Point(int tid, long time) {
    }

    /** An empty file for this process, whose times count from the origin, one of System.nanoTime(). */
    TraceFile(long pid, long origin) {
        mPid = pid;
        mOrigin = origin;
        JsonObject args = new JsonObject();
        args.addProperty("name", "post-processing service");
        addMetadata("process_name", 0, args);
    }

    void add(Slice slice) {
        mLanes.computeIfAbsent(slice.tid(), tid -> new ArrayList<>()).add(slice);
    }

    /** Names a lane, and gives it its place: a smaller index is further up. */
    void nameLane(int tid, String name, int index) {
        JsonObject nameArgs = new JsonObject();
        nameArgs.addProperty("name", name);
        addMetadata("thread_name", tid, nameArgs);
        JsonObject indexArgs = new JsonObject();
        indexArgs.addProperty("sort_index", index);
        addMetadata("thread_sort_index", tid, indexArgs);
    }

    /** Adds an arrow through these points, of which there are two at least, each inside a slice. */
    void addArrow(long id, List<Point> points) {
        for (int i = 0; i < points.size(); ++i) {
            boolean isLast = i == points.size() - 1;
            JsonObject event = event(i == 0 ? "s" : isLast ? "f" : "t", "request", points.get(i).tid());
            event.addProperty("cat", "request");
            event.addProperty("id", id);
            event.addProperty("ts", microseconds(points.get(i).time() - mOrigin));
            if (isLast) {
                event.addProperty("bp", "e");
            }
            mEvents.add(event);
        }
    }

    /** The whole, to be called once. */
    JsonObject json() {
        mLanes.values().forEach(this::addLane);
        JsonObject trace = new JsonObject();
        trace.add("traceEvents", mEvents);
        return trace;
    }

    // Viewers show a lane rightly only when its slices nest, so that none may end after the one around it.
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
        JsonObject event = event("X", slice.name(), slice.tid());
        event.addProperty("cat", slice.category());
        event.addProperty("ts", microseconds(slice.start() - mOrigin));
        event.addProperty("dur", microseconds(slice.end() - slice.start()));
        event.add("args", slice.args());
        mEvents.add(event);
    }

    private void addMetadata(String name, int tid, JsonObject args) {
        JsonObject event = event("M", name, tid);
        event.add("args", args);
        mEvents.add(event);
    }

    private JsonObject event(String phase, String name, int tid) {
        JsonObject event = new JsonObject();
        event.addProperty("ph", phase);
        event.addProperty("name", name);
        event.addProperty("pid", mPid);
        event.addProperty("tid", tid);
        return event;
    }

    private static double microseconds(long nanoseconds) {
        return nanoseconds / NANOSECONDS_PER_MICROSECOND;
    }
}
