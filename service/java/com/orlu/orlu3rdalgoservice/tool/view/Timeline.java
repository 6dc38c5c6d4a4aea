package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.AlgorithmPass;
import com.orlu.orlu3rdalgoservice.tool.model.Call;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.model.LineFile;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.model.StageTime;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.run.EventLog;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch.Stage;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.view.TraceFile.Slice;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.function.ToLongFunction;
import java.util.stream.LongStream;

/** Makes a timeline of a run: Java's work, the calls between the libraries, and waits. */
public final class Timeline {
    private static final long NANOSECONDS_PER_MILLISECOND = 1_000_000;
    /** Operations that the algorithm library calls. The native library calls all others. */
    private static final Set<String> CALLED_BACK = Set.of("callback", "visit");
    /** Fields of a begin event that are not shown: every event has them, or they are too long. */
    private static final Set<String> NOT_SHOWN = Set.of(
            "event", "t", "tid", "thread", "op", "from", "bytes", "metadata", "inputs", "outputs", "handles");

    private final List<Slice> mJava = new ArrayList<>();
    private final List<StageTime> mStageTimes = new ArrayList<>();
    private List<Slice> mWork = List.of();
    private RecordedEvents mEvents = new RecordedEvents();
    private long mStart;
    private long mEnd;

    /** The trace events of a period. `start` and `end` are times of System.nanoTime(). */
    record Part(List<Map<String, Object>> events, long start, long end) {
    }

    /** Adds Java's work for a request on the calling thread. */
    public void add(RunReport report) {
        RequestFile request = report.run().request();
        add(request.file().getFileName().toString(), EventLog.thisThread(), report.run().stages(),
                JsonWriter.object("file", request.file().toString(), "id", request.id(), "verdict",
                        report.verdict().line()));
        mStageTimes.addAll(report.run().stageTimes());
    }

    /** Adds Java's work for a request on the thread `tid`. */
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

    /** Writes the timeline of the last recorded process to `file`. The events' file may be missing. */
    public void write(Path file) throws IOException {
        read();
        Files.writeString(file,
                JsonWriter.line(JsonWriter.object("traceEvents", trace(mStart, Long.MAX_VALUE))) + "\n");
    }

    /** Returns the timeline of the last request with stages; the whole timeline if no request has stages. */
    Part ofLastRequest() throws IOException {
        Slice last = mJava.stream().filter(slice -> slice.category().equals("request"))
                .reduce((one, other) -> other).orElse(null);
        return last == null ? since(0) : part(last.start(), last.end());
    }

    /** Returns the timeline from `time` (System.nanoTime()) on; 0 selects the whole timeline. */
    Part since(long time) throws IOException {
        return part(time, Long.MAX_VALUE);
    }

    private Part part(long from, long end) throws IOException {
        read();
        long start = from == 0 ? mStart : from;
        List<Map<String, Object>> events = trace(start, end);
        events.forEach(event -> event.remove("pid"));
        return new Part(events, start, end);
    }

    private void read() throws IOException {
        mEvents = new RecordedEvents();
        List<Json> lines = LineFile.fromStart(WorkFolder.events(), LineFile::isNoLookup).next();
        int first = 0;
        for (int i = 0; i < lines.size(); ++i) {
            first = new Event(lines.get(i)).kind().equals("header") ? i : first;
        }
        mEvents.add(lines.subList(first, lines.size()));
        mStart = LongStream.of(earliest(mEvents.events(), Event::time), earliest(mJava, Slice::start),
                earliest(mStageTimes, StageTime::start)).min().orElseThrow();
        mEnd = LongStream.concat(mEvents.events().stream().mapToLong(Event::time),
                mJava.stream().mapToLong(Slice::end)).max().orElse(0);
        mWork = work(mStart);
    }

    private static <T> long earliest(List<T> list, ToLongFunction<T> time) {
        return list.stream().mapToLong(time).min().orElse(Long.MAX_VALUE);
    }

    private List<Map<String, Object>> trace(long start, long end) {
        List<Event> headers = mEvents.events("header");
        TraceFile trace = new TraceFile(headers.isEmpty() ? 0 : headers.get(0).number("pid"), start, end);
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

    // The algorithm library's trace may be missing.
    private static List<Slice> work(long start) throws IOException {
        List<Slice> work = new ArrayList<>();
        for (Json line : LineFile.fromStart(WorkFolder.algorithmTrace(), AlgorithmPass::isDone).next()) {
            Event done = new Event(line);
            // The file may be older than this run, and a library may omit the duration and the thread.
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

    // A thread with Java's work is Java's. Any other thread belongs to the caller of its first call:
    // callbacks and visits come from the algorithm library. A thread without calls that runs algorithms is
    // also the algorithm library's.
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
        // If results were read before the callback, it did not cause that: the arrow ends at the callback.
        if (!results.isEmpty() && results.get(0).begin().time() >= callback.begin().time()) {
            points.add(point(results.get(0).begin()));
        }
        trace.addArrow(process.number("n"), points);
    }

    // Adds the wait of a synchronous request, which lasts from the end of the clean-up after process to the
    // thread's next call, inside one Java stage. A full-async request waits in a Java stage of its own.
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
