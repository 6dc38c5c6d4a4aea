package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.tool.explain.SourceLines;
import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.judge.Contract;
import com.orlu.orlu3rdalgoservice.tool.judge.Crash;
import com.orlu.orlu3rdalgoservice.tool.judge.Exhibits;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.model.LineFile;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.model.RunFolder;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;
import com.orlu.orlu3rdalgoservice.tool.request.RequestTags;
import com.orlu.orlu3rdalgoservice.tool.run.ImageResults;
import com.orlu.orlu3rdalgoservice.tool.run.RequestRunner.Ran;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;
import com.orlu.orlu3rdalgoservice.tool.view.PageFolder;
import com.orlu.orlu3rdalgoservice.tool.view.Results;
import com.orlu.orlu3rdalgoservice.tool.view.RunReport;
import com.orlu.orlu3rdalgoservice.tool.view.Timeline;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.stream.Stream;

/** Judges a run whose process died. Works in a new process, with the files that the dead process left. */
final class PostMortem {
    private static final String REPORT = "crash.log";

    private final RunCommand mOptions;
    private final int mExitStatus;

    /**
     * `exitStatus` is the exit status of the dead process as a shell reports it: after a signal, 128 plus the
     * signal's number.
     */
    PostMortem(RunCommand options, int exitStatus) {
        mOptions = options;
        mExitStatus = exitStatus;
    }

    /** Prints the verdict, and saves the last events and the VM's crash report beside the images. */
    int run() throws IOException {
        RecordedEvents events = new RecordedEvents();
        events.add(LineFile.fromStart(WorkFolder.events(), LineFile::isNoLookup).next());
        Path vmReport = WorkFolder.vmReport();
        boolean hasVmReport = vmReport != null && Files.exists(vmReport);
        Crash crash = new Crash(events, mExitStatus, hasVmReport ? Files.readString(vmReport) : "");
        Files.createDirectories(mOptions.written.out);
        Path file = mOptions.written.out.resolve(REPORT);
        Files.writeString(file, Printable.lines(crash.report()));
        Verdict verdict = new Verdict(crash.status(), List.of(crash.reason(), "the crash file is " + file));
        if (mOptions.tried.validate) {
            verdict = verdict.with(new Contract().check(events.events()));
        }
        Session.keepEvents(mOptions, new Timeline());
        Path last = completeLastRun();
        if (mOptions.written.report != null) {
            writePage(verdict, crash.report(), last);
        }
        Results results = new Results("run");
        results.add(mOptions.requests().size() == 1 ? mOptions.names().get(0) : "run", verdict, 0, Map.of());
        mOptions.written.write(results);
        mOptions.written.last().println(verdict.line());
        return verdict.status();
    }

    // Writes the page of the request that was running; earlier requests have pages already. `unended` is the
    // folder of the run that did not finish, or null.
    private void writePage(Verdict verdict, String crash, Path unended) throws IOException {
        List<Path> requests = mOptions.requests();
        PageFolder pages = new PageFolder(mOptions.written.report, requests.size());
        pages.resume();
        if (pages.count() < requests.size()) {
            try {
                List<Json> lines = LineFile.fromStart(WorkFolder.events(), line -> true).next();
                RecordedEvents all = new RecordedEvents();
                all.add(lines);
                SourceLines source = new SourceLines();
                source.learn(all);
                Run run = run(pages, lines, unended);
                RunReport report = new RunReport(
                        run, ImageResults.NONE, verdict, TrialSession.found(pages.count()), "", crash);
                mOptions.written.text().println("  page        " + Printable.line(
                        pages.add(report, inputs(run), new Timeline(), source)));
            } catch (MistakeException e) {
                System.err.println("run: warning: no page: " + Printable.message(e));
            }
        }
        pages.writeIndex(requests);
    }

    private Run run(PageFolder pages, List<Json> lines, Path unended) throws MistakeException, IOException {
        String name = mOptions.names().get(pages.count());
        Path file = mOptions.requests().get(pages.count());
        long start = Math.max(pages.end(), lines.isEmpty() ? 0 : new Event(lines.get(0)).time());
        Path folder = unended == null ? endedSince(start) : unended;
        if (folder != null) {
            return RunFolder.read(folder, name, file);
        }
        // The process died before recording began. Earlier requests have pages: their events are left out.
        RecordedEvents events = new RecordedEvents();
        events.add(lines.stream().filter(line -> new Event(line).time() > pages.end()).toList());
        RequestFile request = RequestFileReader.read(file, mOptions.tried.photo);
        RequestTags.set(request, mOptions.tried.tags);
        return Run.of(name, request, events, new Stopwatch(), null, Ran.NONE);
    }

    // Returns the last run if it has a result and its call of processImage began after `time`; else null.
    // Such a run exists if the process died while it destroyed the client.
    private Path endedSince(long time) throws IOException {
        List<Path> runs = runs();
        if (runs.isEmpty()) {
            return null;
        }
        try {
            Path last = runs.get(runs.size() - 1);
            Json start = Json.read(last.resolve(RunFolder.OUTCOME)).at("processed").get("start");
            return start != null && start.integer(0L, Long.MAX_VALUE) > time ? last : null;
        } catch (MistakeException e) {
            return null;
        }
    }

    // Returns the run's inputs; null if not recorded or unreadable: then the page has no pictures.
    private static Exhibits inputs(Run run) {
        if (run.folder() == null || run.inputs().stream().anyMatch(input -> !input.kept().isEmpty())) {
            return null;
        }
        List<ImageBuffer> inputs = new ArrayList<>();
        try {
            for (ImagePlan plan : run.request().inputs()) {
                inputs.add(ImageBuffer.recorded(plan));
            }
            Exhibits exhibits = new Exhibits();
            exhibits.afterCrash(inputs);
            return exhibits;
        } catch (ErrnoException | MistakeException e) {
            System.err.println("run: warning: no pictures in the page: " + Printable.message(e));
            return null;
        } finally {
            inputs.forEach(ImageBuffer::close);
            Progress.end();
        }
    }

    // Adds events and pixels to the folder of the unfinished run. Returns that folder, or null if there is no
    // unfinished run.
    private Path completeLastRun() throws IOException {
        Path events = WorkFolder.events();
        Path last = null;
        for (Path run : events == null || !Files.exists(events) ? List.<Path>of() : runs()) {
            last = RunFolder.complete(run, events, WorkFolder.pixels()) ? run : last;
        }
        return last;
    }

    // Returns the folders of the runs in the order of execution.
    private List<Path> runs() throws IOException {
        Path folder = mOptions.runs();
        if (folder == null || !Files.isDirectory(folder)) {
            return List.of();
        }
        try (Stream<Path> folders = Files.list(folder)) {
            return folders.filter(RunFolder::isRun).sorted().toList();
        }
    }
}
