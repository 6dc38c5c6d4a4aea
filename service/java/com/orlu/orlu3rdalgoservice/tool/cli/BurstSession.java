package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.check.RequestChecker;
import com.orlu.orlu3rdalgoservice.tool.image.Photos;
import com.orlu.orlu3rdalgoservice.tool.judge.Contract;
import com.orlu.orlu3rdalgoservice.tool.judge.LibraryCheck;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Call;
import com.orlu.orlu3rdalgoservice.tool.model.LineFile;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.run.Burst.Shot;
import com.orlu.orlu3rdalgoservice.tool.run.Burst;
import com.orlu.orlu3rdalgoservice.tool.run.RequestImages;
import com.orlu.orlu3rdalgoservice.tool.run.ServiceClient;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch.Stage;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;
import com.orlu.orlu3rdalgoservice.tool.text.TextTable;
import com.orlu.orlu3rdalgoservice.tool.view.Results;
import com.orlu.orlu3rdalgoservice.tool.view.Timeline;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Stream;

/** Sends one request many times on one client, and judges the results. */
final class BurstSession {
    private static final double NANOSECONDS_PER_MILLISECOND = 1e6;
    private static final double[] QUANTILES = {0.5, 0.95, 0.99, 1};

    private final RunCommand mOptions;
    private final TextLayout mTo;
    private final List<String> mReasons = new ArrayList<>();
    private final Map<String, Object> mJson = new LinkedHashMap<>();

    BurstSession(RunCommand options) {
        mOptions = options;
        mTo = new TextLayout(options.written.text(), options.shown.wide);
    }

    int run() throws MistakeException, ErrnoException, IOException {
        Photos photos = new Photos();
        RequestChecker checker = new RequestChecker(mOptions.tried.photo, mOptions.tried.tags, photos);
        checker.check(mOptions.requests().get(0));
        checker.printMistakes(System.err, false);
        if (!checker.isRight(false)) {
            return Verdict.REFUSED;
        }
        mOptions.checkWritten();
        RequestFile request = checker.requests().get(0);
        LineFile lines = new LineFile(WorkFolder.events(), LineFile::isNoLookup);
        RecordedEvents events = new RecordedEvents();
        ServiceClient client = new ServiceClient(request, new Stopwatch(), null);
        events.add(lines.next());
        Verdict verdict = LibraryCheck.of(events);
        double milliseconds = 0;
        if (verdict.status() == Verdict.OK) {
            try (Burst burst = new Burst(request, client, RequestImages.frames(request, photos))) {
                long images = openImages();
                List<Shot> shots =
                        burst.run(mOptions.tried.burst, mOptions.tried.interval, mOptions.tried.inFlight);
                milliseconds = print(request, burst, shots);
                client.end(request, new Stopwatch());
                events.add(lines.next());
                judge(request, burst, shots, events, openImages() - images);
                addTimeline(shots);
            }
            verdict = mReasons.isEmpty() ? Verdict.ok() : new Verdict(Verdict.FAILED, mReasons);
        }
        if (mOptions.tried.validate) {
            verdict = verdict.with(new Contract().check(events.events()));
        }
        Results results = new Results("run");
        results.add(mOptions.names().get(0), verdict, milliseconds, mJson);
        mOptions.written.write(results);
        mOptions.written.last().println(verdict.line());
        return verdict.status();
    }

    // Prints the measurements. Returns the duration of the burst in milliseconds.
    private double print(RequestFile request, Burst burst, List<Shot> shots) throws IOException {
        long start = shots.stream().mapToLong(shot -> shot.whole().start()).min().orElse(0);
        long end = shots.stream().mapToLong(shot -> shot.whole().end()).max().orElse(0);
        double milliseconds = length(new Stage("", start, end));
        double rate = shots.size() * 1000 / milliseconds;
        long peak = Files.readAllLines(Path.of("/proc/self/status")).stream()
                .filter(line -> line.startsWith("VmHWM"))
                .mapToLong(line -> Long.parseLong(line.replaceAll("[^0-9]", "")) / 1024)
                .findFirst().orElse(0);
        mTo.plain(request.file() + ", " + shots.size() + " times on one client, "
                + (request.fullAsync() ? "full-async" : "synchronous"));
        TextTable table = new TextTable(List.of("latency, ms", "median", "95 %", "99 %", "largest"));
        Map<String, Object> latencies = JsonWriter.object();
        addLatency(table, latencies, "whole", shots.stream().map(Shot::whole));
        for (Stage stage : request.fullAsync() ? shots.get(0).stages() : List.<Stage>of()) {
            addLatency(table, latencies, stage.name(), shots.stream().flatMap(shot -> shot.stages().stream())
                    .filter(each -> each.name().equals(stage.name())));
        }
        table.print(mTo);
        mTo.line("throughput", "%.1f requests/s, %.2f s in all".formatted(rate, milliseconds / 1000));
        mTo.line("in flight", "at most " + burst.mostInFlight());
        mTo.line("memory", "at most " + peak + " MiB, including the VM");
        mJson.putAll(JsonWriter.object("requests", shots.size(), "latency", latencies, "requestsPerSecond",
                rate, "mostInFlight", burst.mostInFlight(), "peakMebibytes", peak));
        return milliseconds;
    }

    private static void addLatency(
            TextTable table, Map<String, Object> json, String name, Stream<Stage> stages) {
        double[] sorted = stages.mapToDouble(BurstSession::length).sorted().toArray();
        List<String> cells = new ArrayList<>(List.of(name));
        List<Double> values = new ArrayList<>();
        for (double quantile : QUANTILES) {
            // Nearest rank.
            values.add(sorted[Math.max(0, (int) Math.ceil(quantile * sorted.length) - 1)]);
            cells.add("%.1f".formatted(values.get(values.size() - 1)));
        }
        table.add(cells, List.of());
        json.put(name, JsonWriter.object("median", values.get(0), "p95", values.get(1), "p99", values.get(2),
                "largest", values.get(3)));
    }

    private static double length(Stage stage) {
        return (stage.end() - stage.start()) / NANOSECONDS_PER_MILLISECOND;
    }

    private void judge(
            RequestFile request, Burst burst, List<Shot> shots, RecordedEvents events, long images) {
        for (Shot shot : shots) {
            shot.problems().forEach(problem -> mReasons.add("request " + shot.id() + ": " + problem));
        }
        checkCallbacks(request, burst, events);
        checkPlanted(request, shots);
        addLeft("clients", events.calls("createClient").size() - events.calls("destroyClient").size());
        addLeft("blocks", events.calls("createMetadata").size() - events.calls("destroyMetadata").size());
        addLeft("open operations", events.open().size());
        addLeft("image descriptors", images);
        if (mReasons.isEmpty()) {
            mTo.line("left", "nothing");
        }
    }

    // Of the two ids, a callback's event contains only the native one. The begin event of process contains
    // both.
    private void checkCallbacks(RequestFile request, Burst burst, RecordedEvents events) {
        Map<Long, Long> current = new HashMap<>();
        Map<Long, Integer> counts = new LinkedHashMap<>();
        for (Call call : events.calls()) {
            long nativeReq = call.begin().number("nativeReq");
            if (call.operation().equals("process")) {
                current.put(nativeReq, call.begin().number("reqId"));
                counts.put(call.begin().number("reqId"), 0);
            } else if (call.operation().equals("callback") && call.begin().isShot()) {
                counts.merge(current.getOrDefault(nativeReq, -1L), 1, Integer::sum);
            }
        }
        int right = 0;
        for (Map.Entry<Long, Integer> count : counts.entrySet()) {
            int times = request.fullAsync() ? burst.announcements(count.getKey()) : count.getValue();
            if (times != 1 || count.getValue() != 1) {
                mReasons.add(("request %d: expected one callback" + (request.fullAsync()
                        ? " and one report to Java, found %d and %d" : ", found %d"))
                        .formatted(count.getKey(), count.getValue(), times));
            } else {
                ++right;
            }
        }
        mTo.line("called back", right + " of " + counts.size() + " exactly once");
    }

    private void checkPlanted(RequestFile request, List<Shot> shots) {
        int right = 0;
        boolean isKnown = shots.stream().anyMatch(shot -> shot.owner() >= 0);
        for (Shot shot : shots) {
            long owner = request.id() + shot.owner();
            if (owner == shot.id()) {
                ++right;
            } else if (isKnown) {
                mReasons.add("request " + shot.id() + " got " + (shot.owner() < 0 ? "no result"
                        : "the results of request " + owner));
            }
        }
        mTo.line("results", isKnown ? right + " of " + shots.size() + " match their request"
                : "not checked: the library does not return the planted values");
        mJson.put("ownResults", isKnown ? right : null);
    }

    private void addLeft(String what, long count) {
        if (count > 0) {
            mReasons.add("left at the end: " + count + " " + what);
        }
    }

    private static long openImages() throws IOException {
        try (Stream<Path> descriptors = Files.list(Path.of("/proc/self/fd"))) {
            return descriptors.filter(BurstSession::isImage).count();
        }
    }

    // Returns false if the descriptor was closed after it was listed.
    private static boolean isImage(Path descriptor) {
        try {
            return Files.readSymbolicLink(descriptor).toString().startsWith("/memfd:");
        } catch (IOException e) {
            return false;
        }
    }

    private void addTimeline(List<Shot> shots) throws IOException {
        Timeline timeline = new Timeline();
        shots.forEach(shot -> timeline.add("request " + shot.id(), shot.tid(), shot.stages(),
                JsonWriter.object("id", shot.id())));
        Session.keepEvents(mOptions, timeline);
    }
}
