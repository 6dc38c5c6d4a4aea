package com.orlu.orlu3rdalgoservice.tool.view;

import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

/** What of the timeline of a run, in the JSON trace format, belongs to one request. */
final class RequestTimeline {
    private static final double NANOSECONDS_PER_MICROSECOND = 1e3;

    private final JsonArray mEvents;
    private final long mOrigin;
    private double mStart;
    private double mEnd = Double.MAX_VALUE;

    /** The origin is the time that the trace's times count from, by System.nanoTime(). */
    RequestTimeline(JsonObject trace, long origin) {
        mEvents = trace.getAsJsonArray("traceEvents");
        mOrigin = origin;
    }

    /** Takes what lies inside the last request that Java's calls were timed of. */
    void ofLastRequest() {
        for (JsonElement element : mEvents) {
            JsonObject event = element.getAsJsonObject();
            if (event.has("args") && event.getAsJsonObject("args").has("verdict")) {
                mStart = event.get("ts").getAsDouble();
                mEnd = mStart + event.get("dur").getAsDouble();
            }
        }
    }

    /** Takes what comes from a time of System.nanoTime() on; 0 for all. */
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
    JsonArray events() {
        JsonArray own = new JsonArray();
        for (JsonElement element : mEvents) {
            JsonObject event = element.getAsJsonObject().deepCopy();
            if (event.has("ts")) {
                double time = event.get("ts").getAsDouble();
                if (time < mStart || time > mEnd) {
                    continue;
                }
                event.addProperty("ts", Math.round(1000 * (time - mStart)) / 1000.0);
            }
            event.remove("pid");
            own.add(event);
        }
        return own;
    }
}
