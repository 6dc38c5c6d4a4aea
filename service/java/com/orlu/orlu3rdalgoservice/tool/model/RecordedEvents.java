package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;

import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Map;

/** Events in recorded order. The begin and end events of each call are paired. */
public final class RecordedEvents {
    private final List<Event> mEvents = new ArrayList<>();
    private final List<Call> mCalls = new ArrayList<>();
    private final Map<Long, Call> mOpen = new HashMap<>();

    /** Adds an event file's lines, in order. An end event without a begin event does not count as a call. */
    public void add(List<Json> lines) {
        for (Json line : lines) {
            add(new Event(line));
        }
    }

    private void add(Event event) {
        mEvents.add(event);
        if (event.kind().equals("begin")) {
            Call call = new Call(event);
            mCalls.add(call);
            mOpen.put(event.number("n"), call);
        } else if (event.kind().equals("end")) {
            Call call = mOpen.remove(event.number("n"));
            if (call != null) {
                call.end(event);
            }
        }
    }

    public List<Event> events() {
        return mEvents;
    }

    public List<Event> events(String kind) {
        return mEvents.stream().filter(event -> event.kind().equals(kind)).toList();
    }

    /** All calls, in the order of their begin events. */
    public List<Call> calls() {
        return mCalls;
    }

    public List<Call> calls(String operation) {
        return mCalls.stream().filter(call -> call.operation().equals(operation)).toList();
    }

    /** The last call of an operation; null if there is none. */
    public Call last(String operation) {
        List<Call> calls = calls(operation);
        return calls.isEmpty() ? null : calls.get(calls.size() - 1);
    }

    /** The calls that have not returned. */
    public List<Call> open() {
        return mCalls.stream().filter(call -> call.end() == null).toList();
    }
}
