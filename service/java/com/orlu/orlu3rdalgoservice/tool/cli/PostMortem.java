package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.tool.explain.SourceLines;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSize;
import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.Photos;
import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
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
import com.orlu.orlu3rdalgoservice.tool.run.RequestImages;
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

/** Judges a run whose process ended before the command did, in another process, by what it left behind. */
final class PostMortem {
    private static final String REPORT = "crash.log";

    private final RunCommand mOptions;
    private final int mExitStatus;

    /** The exit status is the dead process's, as a shell has it: 128 and the number of the signal. */
    PostMortem(RunCommand options, int exitStatus) {
        mOptions = options;
        mExitStatus = exitStatus;
    }

    /** Prints the verdict, and keeps the last events and the VM's own report beside the images. */
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
        Session.keepEvents(mOptions, new Timeline());
        if (mOptions.written.report != null) {
            writePage(verdict, crash.report());
        }
        if (mOptions.written.record != null) {
            completeRecordings(mOptions.written.record);
        }
        Results results = new Results("run");
        results.add(mOptions.requests().size() == 1 ? mOptions.names().get(0) : "run", verdict, 0, Map.of());
        mOptions.written.write(results);
        mOptions.written.last().println(verdict.line());
        return verdict.status();
    }

    // The requests before it have their pages already.
    private void writePage(Verdict verdict, String crash) throws IOException {
        List<Path> requests = mOptions.requests();
        PageFolder pages = new PageFolder(mOptions.written.report, PageFolder.Sources.ofWorkFolder(), requests
                .size());
        pages.resume();
        if (pages.count() < requests.size()) {
            try {
                RecordedEvents all = new RecordedEvents();
                RecordedEvents own = new RecordedEvents();
                List<Json> lines = LineFile.fromStart(WorkFolder.events(), line -> true).next();
                all.add(lines);
                own.add(lines.stream().filter(line -> new Event(line).time() > pages.end()).toList());
                SourceLines source = new SourceLines();
                source.learn(all);
                RequestFile request = RequestFileReader.read(requests.get(pages.count()),
                        mOptions.tried.photo);
                RequestTags.set(request, mOptions.tried.tags);
                Run run = Run.of(mOptions.names().get(pages.count()), request, own, List.of(),
                        null, null);
                RunReport report = new RunReport(
                        run, ImageResults.NONE, verdict, TrialSession.found(pages.count()), "", crash);
                mOptions.written.text().println("  page        " + Printable.line(
                        pages.add(report, inputs(request), new Timeline(), source)));
            } catch (MistakeException e) {
                System.err.println("run: no page: " + Printable.message(e));
            }
        }
        pages.writeIndex(requests);
    }

    // Null when they can't be made again: the page has no pictures then.
    private static Exhibits inputs(RequestFile request) {
        List<ImageBuffer> inputs = new ArrayList<>();
        try {
            List<SynthesisedFrame> frames = RequestImages.frames(request, new Photos());
            FrameSize size = FrameSize.of(request, frames);
            for (ImagePlan plan : request.inputs()) {
                inputs.add(RequestImages.input(plan, frames, size));
            }
            Exhibits exhibits = new Exhibits();
            exhibits.afterCrash(inputs);
            return exhibits;
        } catch (ErrnoException | MistakeException e) {
            System.err.println("run: no pictures in the page: " + Printable.message(e));
            return null;
        } finally {
            inputs.forEach(ImageBuffer::close);
            Progress.end();
        }
    }

    /** Puts the events beside a recording that was not ended, of which there is at most one: the last. */
    static void completeRecordings(Path folder) throws IOException {
        Path events = WorkFolder.events();
        if (!Files.isDirectory(folder) || events == null || !Files.exists(events)) {
            return;
        }
        try (Stream<Path> folders = Files.list(folder)) {
            for (Path recording : folders.filter(RunFolder::isRun).toList()) {
                RunFolder.complete(recording, events, WorkFolder.pixels());
            }
        }
    }
}
