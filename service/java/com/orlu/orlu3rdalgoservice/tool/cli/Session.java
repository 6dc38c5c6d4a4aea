package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.record.RequestRecorder;
import com.orlu.orlu3rdalgoservice.tool.check.RequestChecker;
import com.orlu.orlu3rdalgoservice.tool.explain.ExplanationPrinter;
import com.orlu.orlu3rdalgoservice.tool.explain.Readings;
import com.orlu.orlu3rdalgoservice.tool.explain.SourceLines;
import com.orlu.orlu3rdalgoservice.tool.explain.TagCheck;
import com.orlu.orlu3rdalgoservice.tool.explain.TagPrinter;
import com.orlu.orlu3rdalgoservice.tool.image.OutputReader;
import com.orlu.orlu3rdalgoservice.tool.image.Photos;
import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;
import com.orlu.orlu3rdalgoservice.tool.judge.Callbacks;
import com.orlu.orlu3rdalgoservice.tool.judge.Contract;
import com.orlu.orlu3rdalgoservice.tool.judge.Exhibits;
import com.orlu.orlu3rdalgoservice.tool.judge.Judge;
import com.orlu.orlu3rdalgoservice.tool.judge.LibraryCheck;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.AlgorithmPass;
import com.orlu.orlu3rdalgoservice.tool.model.BaseFrame;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.LineFile;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.run.ImageResults;
import com.orlu.orlu3rdalgoservice.tool.run.NoiseMeasure;
import com.orlu.orlu3rdalgoservice.tool.run.OutputImages;
import com.orlu.orlu3rdalgoservice.tool.run.RequestImages;
import com.orlu.orlu3rdalgoservice.tool.run.RequestRunner;
import com.orlu.orlu3rdalgoservice.tool.run.ServiceClient;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;
import com.orlu.orlu3rdalgoservice.tool.view.JsonReport;
import com.orlu.orlu3rdalgoservice.tool.view.PageFolder;
import com.orlu.orlu3rdalgoservice.tool.view.ParameterPrinter;
import com.orlu.orlu3rdalgoservice.tool.view.Results;
import com.orlu.orlu3rdalgoservice.tool.view.RunReport;
import com.orlu.orlu3rdalgoservice.tool.view.StageTable;
import com.orlu.orlu3rdalgoservice.tool.view.Summary;
import com.orlu.orlu3rdalgoservice.tool.view.Timeline;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Collectors;

/** Runs the requests of one command line in sequence, and prints what happened. */
final class Session {
    /** How much longer to wait after a timeout, to distinguish a late callback from a missing one. */
    private static final long LATE_MILLISECONDS = 2_000;
    private static final long POLL_MILLISECONDS = 50;

    private final RunCommand mOptions;
    private final PrintStream mTo;
    private final LineFile mTraces;
    private final LineFile mEvents;
    private final Results mResults = new Results("run");
    private final Photos mPhotos = new Photos();
    private final Timeline mTimeline = new Timeline();

    /** Creates the folders of recordings; null if nothing is recorded. */
    private final RequestRecorder mRecorder;
    /** The folder of the pages; null without --report. */
    private PageFolder mPages;
    /** Checks the calls against the contract; null without --validate. */
    private final Contract mContract;
    private final SourceLines mSourceLines = new SourceLines();

    private ServiceClient mClient;
    /** The verdict on the algorithm library, from the events up to the creation of the client. */
    private Verdict mLibrary;

    Session(RunCommand options) {
        mOptions = options;
        mTo = options.written.text();
        mRecorder = options.recorder();
        mContract = options.tried.validate ? new Contract() : null;
        mTraces = new LineFile(WorkFolder.algorithmTrace(), AlgorithmPass::isDone);
        mEvents = new LineFile(
                WorkFolder.events(), options.needsTrials() ? line -> true : LineFile::isNoLookup);
    }

    /**
     * Returns Verdict.REFUSED if a file is invalid (with --check --strict, also if a file has warnings).
     * Otherwise returns the status of the first request that is not OK; OK if all are OK.
     */
    int run() throws MistakeException, ErrnoException, IOException {
        // Checks all files before the first request runs, so a mistake in the last file is reported at once.
        RequestChecker checker = new RequestChecker(mOptions.tried.photo, mOptions.tried.tags, mPhotos);
        mOptions.requests().forEach(checker::check);
        if (mOptions.tried.check) {
            checker.printUnderstood(mTo);
            writeCheck(checker);
        }
        // Without --check, --strict runs requests that have warnings, and changes their verdicts afterwards.
        boolean isStrict = mOptions.tried.strict && mOptions.tried.check;
        checker.printMistakes(System.err, isStrict);
        if (!checker.isRight(isStrict)) {
            return Verdict.REFUSED;
        }
        if (mOptions.tried.check) {
            return Verdict.OK;
        }
        mOptions.checkWritten();
        return runAll(checker);
    }

    private void writeCheck(RequestChecker checker) throws IOException {
        boolean isStrict = mOptions.tried.strict;
        for (Mistakes mistakes : checker.mistakes()) {
            boolean isRight = mistakes.errors() == 0 && (!isStrict || mistakes.warnings() == 0);
            mResults.add(mistakes.file(), isRight ? Verdict.ok() : new Verdict(Verdict.REFUSED,
                    mistakes.lines()), 0, JsonWriter.object("mistakes", mistakes.lines()));
        }
        mOptions.written.check(new GivenPaths());
        mOptions.written.write(mResults);
    }

    private int runAll(RequestChecker checker) throws MistakeException, ErrnoException, IOException {
        List<RequestFile> requests = checker.requests();
        List<String> names = mOptions.names();
        if (mOptions.written.report != null) {
            mPages = new PageFolder(mOptions.written.report, requests.size());
        }
        for (int i = 0; i < requests.size(); ++i) {
            if (i > 0) {
                mTo.println();
            }
            RunReport report;
            Exhibits exhibits = mPages == null ? null : new Exhibits();
            try {
                report = runOne(names.get(i), requests.get(i), exhibits, !mOptions.tried.oneClient
                        || i == requests.size() - 1);
            } finally {
                Progress.end();
            }
            Dependences dependences = mOptions.needsTrials() ? TrialSession.found(i) : null;
            Verdict verdict = !mOptions.tried.strict ? report.verdict()
                    : new TagCheck(Readings.of(report.run(), dependences))
                            .strict(report.verdict(), checker.warnings(i));
            report = new RunReport(report.run(), report.images(), verdict, dependences, "", "");
            mTimeline.add(report);
            if (mPages != null) {
                report = report.withPage(mPages.add(report, exhibits, mTimeline, mSourceLines));
            }
            print(report);
            mResults.add(report.run().name(), verdict, report.run().milliseconds().values().stream()
                    .mapToDouble(Double::doubleValue).sum(), JsonReport.members(report));
        }
        mOptions.written.write(mResults);
        keepEvents(mOptions, mTimeline);
        if (mPages != null) {
            mPages.writeIndex(mOptions.requests());
        }
        return overall();
    }

    /** Copies the events to the file of --events, and writes the timeline to the file of --timeline. */
    static void keepEvents(RunCommand options, Timeline timeline) throws IOException {
        Path events = WorkFolder.events();
        if (options.written.events != null && events != null && Files.exists(events)) {
            Files.copy(events, options.written.events, StandardCopyOption.REPLACE_EXISTING);
        }
        if (options.written.timeline != null) {
            timeline.write(options.written.timeline);
        }
    }

    private void print(RunReport report) {
        new Summary(report, mTo, mOptions.shown.wide).print();
        if (mOptions.shown.params) {
            ParameterPrinter.print(report.run().handover(), mTo, mOptions.shown.wide);
        }
        if (mOptions.shown.times) {
            StageTable.print(report.run().stageTimes(), new TextLayout(mTo, mOptions.shown.wide));
        }
        boolean hasRun = report.verdict().status() != Verdict.UNUSABLE;
        if (hasRun && mOptions.shown.tags) {
            new TagPrinter(report.run(), report.dependences()).print(new TextLayout(mTo,
                    mOptions.shown.wide));
        }
        if (hasRun && !mOptions.shown.explain.isEmpty()) {
            mSourceLines.learn(report.run().events());
            new ExplanationPrinter(report.run(), report.dependences(), mSourceLines,
                    new TextLayout(mTo, mOptions.shown.wide)).print(mOptions.shown.explain);
        }
        (mOptions.requests().size() == 1 ? mOptions.written.last() : mTo).println(report.verdict().line());
    }

    private int overall() {
        if (mResults.size() > 1) {
            printOverall(mOptions, mResults, mPages);
        }
        return mResults.status();
    }

    /** Prints the overall verdict, below the verdicts on the single requests. `pages` may be null. */
    static void printOverall(RunCommand options, Results results, PageFolder pages) {
        List<Integer> failed = results.failed();
        String files = failed.stream().map(i -> options.requests().get(i).toString())
                .collect(Collectors.joining(", "));
        options.written.text().println();
        if (pages != null) {
            options.written.text().println("  page        " + Printable.line(pages.index().toString()));
        }
        options.written.last().println(new Verdict(results.status(), List.of(
                "%d of %d requests: %s".formatted(failed.size(), results.size(), files))).line());
    }

    private RunReport runOne(String name, RequestFile request, Exhibits exhibits, boolean lastOfClient)
            throws MistakeException, ErrnoException, IOException {
        RecordedEvents events = new RecordedEvents();
        Stopwatch stopwatch = new Stopwatch(mOptions.shown.times);
        stopwatch.mark("frames of the photo");
        List<SynthesisedFrame> frames = RequestImages.frames(request, mPhotos);
        if (mClient == null) {
            stopwatch.mark("client created");
            mClient = new ServiceClient(request, stopwatch, mRecorder);
            events.add(mEvents.next());
            mLibrary = LibraryCheck.of(events);
        }
        RequestRunner runner = null;
        ImageResults images = ImageResults.NONE;
        // With an unusable library, a request would only time out.
        if (mLibrary.status() == Verdict.OK) {
            runner = new RequestRunner(request, mClient, stopwatch, mOptions.needsLookups());
            try (RequestRunner closed = runner) {
                stopwatch.mark("compositions made");
                closed.make(frames);
                if (exhibits != null) {
                    stopwatch.mark("inputs read");
                    exhibits.before(closed.inputs());
                }
                stopwatch.mark("call prepared");
                closed.process();
                awaitLateCallback(request, closed.ran(), events);
                stopwatch.mark("pictures written");
                images = results(name, request, closed, frames, exhibits);
            }
        }
        if (lastOfClient) {
            stopwatch.mark("client destroyed");
            mClient.end(request, stopwatch);
            mClient = null;
            if (mContract != null) {
                // Gives the library time to make calls that the contract forbids after destroyClient.
                sleep();
            }
        }
        stopwatch.mark("end");
        events.add(mEvents.next());
        Run run = Run.of(name, request, events, stopwatch, AlgorithmPass.last(mTraces.next()),
                runner == null ? RequestRunner.Ran.NONE : runner.ran());
        Verdict verdict = runner == null ? mLibrary : Judge.of(run, images.problems());
        if (mContract != null) {
            verdict = verdict.with(mContract.check(events.events()));
        }
        return new RunReport(run, images, verdict, null, "", "");
    }

    // If the callback did not arrive in time, waits longer, to find out whether it is late or missing.
    private void awaitLateCallback(RequestFile request, RequestRunner.Ran ran, RecordedEvents events)
            throws IOException {
        long end = System.nanoTime() + LATE_MILLISECONDS * 1_000_000;
        Callbacks callbacks;
        do {
            events.add(mEvents.next());
            callbacks = new Callbacks(events, request.fullAsync(), ran);
        } while (callbacks.isMissing() && !callbacks.hasEnd() && System.nanoTime() < end && sleep());
    }

    private static boolean sleep() {
        try {
            Thread.sleep(POLL_MILLISECONDS);
            return true;
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
            return false;
        }
    }

    private ImageResults results(String name, RequestFile request, RequestRunner runner,
            List<SynthesisedFrame> frames, Exhibits exhibits) throws IOException {
        Progress.show("comparing and writing " + runner.outputs().size() + " outputs");
        List<OutputReader> outputs = runner.outputs().stream().map(OutputReader::of).toList();
        List<String> problems = new ArrayList<>();
        for (int i = 0; i < outputs.size(); ++i) {
            if (!outputs.get(i).problem().isEmpty()) {
                problems.add("output " + i + " is " + outputs.get(i).problem());
            }
        }
        BaseFrame base = BaseFrame.of(request, runner.ran().put());
        List<String> files = new OutputImages(mOptions.written.out, name).write(base.index(), frames,
                runner.inputs(), outputs);
        List<NoiseMeasure> measures = NoiseMeasure.of(
                request, base.index(), frames, outputs, mOptions.written.json != null);
        if (exhibits != null) {
            exhibits.after(base, runner.inputs(), runner.outputs(), outputs);
        }
        return new ImageResults(files, measures, request.frames().hasNoise()
                ? measures.stream().map(NoiseMeasure::line).toList() : List.of(), problems);
    }
}
