package com.orlu.orlu3rdalgoservice.tool.view;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The part of a run's timeline, in the JSON trace format, that belongs to one request. */
final class RequestTimeline {
    private static final double NANOSECONDS_PER_MICROSECOND = 1e3;

    private final List<Map<String, Object>> mEvents;
    private final long mOrigin;
    private double mStart;
    private double mEnd = Double.MAX_VALUE;

    /** `origin` is the zero point of the trace's times, by System.nanoTime(). */
    RequestTimeline(List<Map<String, Object>> trace, long origin) {
        mEvents = trace;
        mOrigin = origin;
    }

    /** Selects what lies within the last request with timed Java calls. */
    void ofLastRequest() {
        for (Map<String, Object> event : mEvents) {
            if (event.get("args") instanceof Map<?, ?> args && args.containsKey("verdict")) {
                mStart = (double) event.get("ts");
                mEnd = mStart + (double) event.get("dur");
            }
        }
    }

    /** Selects what starts at or after a time of System.nanoTime(); 0 for everything. */
    void from(long time) {
        mStart = time == 0 ? 0 : (time - mOrigin) / NANOSECONDS_PER_MICROSECOND;
    }

    /** By System.nanoTime(). */
    long start() {
        return mOrigin + (long) (mStart * NANOSECONDS_PER_MICROSECOND);
    }

    /** By System.nanoTime(). */
    long end() {
        return mEnd == Double.MAX_VALUE ? Long.MAX_VALUE
                : mOrigin + (long) (mEnd * NANOSECONDS_PER_MICROSECOND);
    }

    /** Names of lanes, slices and arrows; times are microseconds from the first one. */
    List<Object> events() {
        List<Object> own = new ArrayList<>();
        for (Map<String, Object> each : mEvents) {
            Map<String, Object> event = new LinkedHashMap<>(each);
            if (event.get("ts") instanceof Double time) {
                if (time < mStart || time > mEnd) {
                    continue;
                }
                event.put("ts", Math.round(1000 * (time - mStart)) / 1000.0);
            }
            event.remove("pid");
            own.add(event);
        }
        return own;
    }
}
