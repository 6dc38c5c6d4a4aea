package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.Call;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.model.LineFile;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.model.StageTime;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.run.EventLog;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch.Stage;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;

/** Makes a timeline of a run: Java's work, the calls between the libraries, and waits. */
public final class Timeline {
    private static final long NANOSECONDS_PER_MILLISECOND = 1_000_000;
    /** Called by the algorithm library; all others are called by the native library. */
    private static final Set<String> CALLED_BACK = Set.of("callback", "visit");
    /** Fields of a begin event that every event has or that are too long to show. */
    private static final Set<String> NOT_SHOWN = Set.of(
            "event", "t", "tid", "thread", "op", "from", "bytes", "metadata", "inputs", "outputs", "handles");

    private final List<Slice> mJava = new ArrayList<>();
    private final List<StageTime> mStageTimes = new ArrayList<>();
    private List<Slice> mWork = List.of();
    private RecordedEvents mEvents = new RecordedEvents();
    private long mEnd;
    private long mOrigin;

    /** Adds Java's work for a request on the calling thread. */
    public void add(RunReport report) {
        RequestFile request = report.run().request();
        add(request.file().getFileName().toString(), EventLog.thisThread(), report.run().stages(),
                JsonWriter.object("file", request.file().toString(), "id", request.id(), "verdict",
                        report.verdict().line()));
        mStageTimes.addAll(report.run().stageTimes());
    }

    /** Adds Java's work for a request on this thread. */
    public void add(String name, int tid, List<Stage> stages, Map<String, Object> args) {
        if (stages.isEmpty()) {
            return;
        }
        mJava.add(new Slice(name, "request", tid, stages.get(0).start(),
                stages.get(stages.size() - 1).end(), args));
        for (Stage stage : stages) {
            mJava.add(new Slice(
                    "Java: " + stage.name(), "java", tid, stage.start(), stage.end(), Map.of()));
        }
    }

    /**
     * Writes the timeline of the last process in the events' file. That file may be missing; the algorithm
     * library's trace may be missing or null.
     */
    public void write(Path file, Path events, Path algorithmTrace) throws IOException {
        Files.writeString(file,
                JsonWriter.line(JsonWriter.object("traceEvents", trace(events, algorithmTrace))) + "\n");
    }

    /** Returns the trace events. More can be added afterwards, and the timeline made again. */
    public List<Map<String, Object>> trace(Path events, Path algorithmTrace) throws IOException {
        mEvents = new RecordedEvents();
        mEnd = 0;
        List<Json> lines = LineFile.fromStart(events, LineFile::isNoLookup).next();
        int first = 0;
        for (int i = 0; i < lines.size(); ++i) {
            first = new Event(lines.get(i)).kind().equals("header") ? i : first;
        }
        mEvents.add(lines.subList(first, lines.size()));
        long start = Long.MAX_VALUE;
        for (Event event : mEvents.events()) {
            start = Math.min(start, event.time());
            mEnd = Math.max(mEnd, event.time());
        }
        for (Slice slice : mJava) {
            start = Math.min(start, slice.start());
            mEnd = Math.max(mEnd, slice.end());
        }
        for (StageTime stage : mStageTimes) {
            start = Math.min(start, stage.start());
        }
        mWork = work(algorithmTrace, start);
        mOrigin = start;
        List<Event> headers = mEvents.events("header");
        TraceFile trace = new TraceFile(headers.isEmpty() ? 0 : headers.get(0).number("pid"), start);
        nameLanes(trace);
        mJava.forEach(trace::add);
        mWork.forEach(trace::add);
        for (StageTime stage : mStageTimes) {
            trace.addCounter("page faults", stage.start(), stage.faults());
            trace.addCounter("heap bytes", stage.start(), Math.max(0, stage.allocated()));
            trace.addCounter("passed bytes", stage.start(), stage.passed());
        }
        mEvents.calls().forEach(call -> trace.add(slice(call)));
        RequestTrack.of(mEvents).forEach(request -> addRequest(trace, request));
        return trace.events();
    }

    private static List<Slice> work(Path algorithmTrace, long start) throws IOException {
        List<Slice> work = new ArrayList<>();
        for (Json line : LineFile.fromStart(algorithmTrace, text -> text.contains("\"done\"")).next()) {
            Event done = new Event(line);
            // The file may be older than this run, and other libraries may omit time and thread.
            if (!done.has("tid") || !done.has("milliseconds") || done.time() < start) {
                continue;
            }
            double milliseconds = done.real("milliseconds");
            List<String> ran = done.texts("ran");
            work.add(new Slice("algorithms: " + (ran.isEmpty() ? "none" : String.join(", ", ran)),
                    "algorithms", tid(done),
                    done.time() - (long) (milliseconds * NANOSECONDS_PER_MILLISECOND), done.time(),
                    JsonWriter.object("ran", ran, "skipped", done.texts("skipped"))));
        }
        return work;
    }

    /** The zero point of the last trace's times, by System.nanoTime(). */
    public long origin() {
        return mOrigin;
    }

    // A thread belongs to the algorithm library if its first action is to work or to call back.
    private void nameLanes(TraceFile trace) {
        Map<Integer, String> names = new LinkedHashMap<>();
        mJava.forEach(slice -> names.put(slice.tid(), "Java"));
        for (Call call : mEvents.calls()) {
            String owner = CALLED_BACK.contains(call.operation()) ? "algorithm library" : "Java";
            names.putIfAbsent(tid(call.begin()), owner + " (" + call.begin().text("thread") + ")");
        }
        mWork.forEach(slice -> names.putIfAbsent(slice.tid(), "algorithm library"));
        int index = 0;
        for (Map.Entry<Integer, String> lane : names.entrySet()) {
            trace.nameLane(lane.getKey(), lane.getValue(), index);
            ++index;
        }
    }

    private Slice slice(Call call) {
        Map<String, Object> args = new LinkedHashMap<>();
        args.putAll(call.begin().fields().entries());
        args.keySet().removeAll(NOT_SHOWN);
        args.put("outcome", call.outcome());
        if (call.end() != null) {
            args.put("ns", call.end().number("ns"));
        }
        return new Slice(
                call.operation(), "library", tid(call.begin()), call.begin().time(), end(call), args);
    }

    private void addRequest(TraceFile trace, RequestTrack request) {
        Event process = request.process().begin();
        Call write = request.firstWrite();
        if (write != null) {
            trace.add(slice("translation", process, write.begin().time(), process.time()));
        }
        addWait(trace, request);
        List<Call> results = request.results();
        if (!results.isEmpty()) {
            Event first = results.get(0).begin();
            trace.add(slice("results", first, first.time(), end(results.get(results.size() - 1))));
        }
        Call callback = request.callback();
        if (callback == null) {
            return;
        }
        List<TraceFile.Point> points = new ArrayList<>(List.of(point(process), point(callback.begin())));
        // Results read before a late callback are not caused by it.
        if (!results.isEmpty() && results.get(0).begin().time() >= callback.begin().time()) {
            points.add(point(results.get(0).begin()));
        }
        trace.addArrow(process.number("n"), points);
    }

    // A synchronous request waits inside Java's call: from the end of the clean-up after process to the
    // thread's next call. A full-async one waits in Java, in a separate stage.
    private void addWait(TraceFile trace, RequestTrack request) {
        if (request.process().end() == null) {
            return;
        }
        Event process = request.process().begin();
        long start = end(request.process());
        long end = mEnd;
        for (Call call : request.untilNext()) {
            if (request.isTidyingUp(call)) {
                start = end(call);
            } else {
                end = call.begin().time();
            }
        }
        for (Slice stage : mJava) {
            if (stage.category().equals("java") && stage.tid() == tid(process)
                    && stage.contains(process.time()) && !stage.contains(end)) {
                return;
            }
        }
        trace.add(slice("wait for the callback", process, start, end));
    }

    private static Slice slice(String name, Event of, long start, long end) {
        Map<String, Object> args = new LinkedHashMap<>();
        for (String field : List.of("reqId", "nativeReq", "algoList")) {
            if (of.has(field)) {
                args.put(field, of.fields().get(field));
            }
        }
        return new Slice(name, "request", tid(of), start, end, args);
    }

    private long end(Call call) {
        return call.end() == null ? mEnd : call.end().time();
    }

    private static TraceFile.Point point(Event event) {
        return new TraceFile.Point(tid(event), event.time());
    }

    private static int tid(Event event) {
        return Math.toIntExact(event.number("tid"));
    }
}
