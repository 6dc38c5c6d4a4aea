package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.json.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.model.Call;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.model.LineFile;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
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

/** Makes a timeline of a run: what Java did, what passed between the libraries, and what was waited for. */
public final class Timeline {
    private static final long NANOSECONDS_PER_MILLISECOND = 1_000_000;
    /** What the algorithm library calls; all else is called by the native library. */
    private static final Set<String> CALLED_BACK = Set.of("callback", "visit");
    /** Of a begin: what every event has, and what is too long to be shown. */
    private static final Set<String> NOT_SHOWN = Set.of(
            "event", "t", "tid", "thread", "op", "from", "bytes", "metadata", "inputs", "outputs", "handles");

    private final List<Slice> mJava = new ArrayList<>();
    private List<Slice> mWork = List.of();
    private RecordedEvents mEvents = new RecordedEvents();
    private long mEnd;
    private long mOrigin;

    /** Adds what Java did for a request on the thread that calls this. */
    public void add(RunReport report) {
        RequestFile request = report.run().request();
        add(request.file().getFileName().toString(), EventLog.thisThread(), report.run().stages(),
                JsonWriter.object("file", request.file().toString(), "id", request.id(), "verdict",
                        report.verdict().line()));
    }

    /** Adds what Java did for a request on this thread. */
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
     * Writes the timeline of the last process that has events in that file. The algorithm library's trace
     * need not be there; null for none. So need not the events.
     */
    public void write(Path file, Path events, Path algorithmTrace) throws IOException {
        Files.writeString(file,
                JsonWriter.line(JsonWriter.object("traceEvents", trace(events, algorithmTrace))) + "\n");
    }

    /** Its trace events; what is added later can follow, and the timeline be made again. */
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
        mWork = work(algorithmTrace, start);
        mOrigin = start;
        List<Event> headers = mEvents.events("header");
        TraceFile trace = new TraceFile(headers.isEmpty() ? 0 : headers.get(0).number("pid"), start);
        nameLanes(trace);
        mJava.forEach(trace::add);
        mWork.forEach(trace::add);
        mEvents.calls().forEach(call -> trace.add(slice(call)));
        RequestTrack.of(mEvents).forEach(request -> addRequest(trace, request));
        return trace.events();
    }

    private static List<Slice> work(Path algorithmTrace, long start) throws IOException {
        List<Slice> work = new ArrayList<>();
        for (Json line : LineFile.fromStart(algorithmTrace, text -> text.contains("\"done\"")).next()) {
            Event done = new Event(line);
            // The file may be older than this run; and another library may not say when and where.
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

    /** What the times of the last trace count from, by System.nanoTime(). */
    public long origin() {
        return mOrigin;
    }

    // A thread is the algorithm library's when the first that it does is to work or to call back.
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
        // Results that were read before a late callback do not come from it.
        if (!results.isEmpty() && results.get(0).begin().time() >= callback.begin().time()) {
            points.add(point(results.get(0).begin()));
        }
        trace.addArrow(process.number("n"), points);
    }

    // A request that is not full-async waits inside Java's call: from where all is tidied up behind process
    // to the next call of its thread. A full-async one waits in Java, in a stage of its own.
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
