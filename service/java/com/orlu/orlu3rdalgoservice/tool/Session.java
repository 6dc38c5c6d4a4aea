package com.orlu.orlu3rdalgoservice.tool;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.record.RequestRecorder;
import com.orlu.orlu3rdalgoservice.tool.check.RequestChecker;
import com.orlu.orlu3rdalgoservice.tool.explain.ExplanationPrinter;
import com.orlu.orlu3rdalgoservice.tool.explain.Readings;
import com.orlu.orlu3rdalgoservice.tool.explain.SourceLines;
import com.orlu.orlu3rdalgoservice.tool.explain.TagCheck;
import com.orlu.orlu3rdalgoservice.tool.explain.TagPrinter;
import com.orlu.orlu3rdalgoservice.tool.image.Photos;
import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;
import com.orlu.orlu3rdalgoservice.tool.judge.Exhibits;
import com.orlu.orlu3rdalgoservice.tool.judge.Judge;
import com.orlu.orlu3rdalgoservice.tool.judge.LibraryCheck;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.LineFile;
import com.orlu.orlu3rdalgoservice.tool.model.RequestReport;
import com.orlu.orlu3rdalgoservice.tool.model.TraceReader;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.run.RequestImages;
import com.orlu.orlu3rdalgoservice.tool.run.RequestNames;
import com.orlu.orlu3rdalgoservice.tool.run.RequestRunner;
import com.orlu.orlu3rdalgoservice.tool.run.ServiceClient;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;
import com.orlu.orlu3rdalgoservice.tool.view.JsonReport;
import com.orlu.orlu3rdalgoservice.tool.view.PageFolder;
import com.orlu.orlu3rdalgoservice.tool.view.ParameterPrinter;
import com.orlu.orlu3rdalgoservice.tool.view.Summary;
import com.orlu.orlu3rdalgoservice.tool.view.Timeline;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.ArrayList;
import java.util.List;

/** Runs the requests of one command line, one after the other, and prints what happened. */
final class Session {
    private final Options mOptions;
    private final PrintStream mTo = System.out;
    private final TraceReader mTraces;
    private final LineFile mEvents;
    private final JsonReport mJson = new JsonReport();
    private final Photos mPhotos = new Photos();
    private final Timeline mTimeline = new Timeline();
    private final List<Verdict> mVerdicts = new ArrayList<>();

    /** Null when nothing is to be recorded. */
    private final RequestRecorder mRecorder;
    /** Null when no page is wanted. */
    private PageFolder mPages;
    private final SourceLines mSourceLines = new SourceLines();

    private ServiceClient mClient;
    /** What was found of the algorithm library when the client was made. */
    private Verdict mLibrary;

    Session(Options options) {
        mOptions = options;
        mRecorder = options.recorder();
        mTraces = new TraceReader(WorkFolder.algorithmTrace());
        mEvents = new LineFile(
                WorkFolder.events(), options.needsTrials() ? line -> true : LineFile::isNoLookup);
    }

    /** Returns one of Verdict's statuses, the first that is not OK. */
    int run() throws MistakeException, ErrnoException, IOException {
        // All are checked before the first runs, so that a mistake in the last shows at once.
        RequestChecker checker = new RequestChecker(mOptions.photo, mPhotos);
        mOptions.requests().forEach(checker::check);
        if (mOptions.check) {
            checker.printUnderstood(mTo);
        }
        // A strict run goes on with warnings, and fails with them in its verdict.
        boolean isStrict = mOptions.strict && mOptions.check;
        checker.printMistakes(System.err, isStrict);
        if (!checker.isRight(isStrict)) {
            return Verdict.REFUSED;
        }
        if (mOptions.check) {
            return Verdict.OK;
        }
        mOptions.checkWritten();
        return runAll(checker);
    }

    private int runAll(RequestChecker checker) throws MistakeException, ErrnoException, IOException {
        List<RequestFile> requests = checker.requests();
        List<String> names = RequestNames.of(mOptions.requests());
        if (mOptions.report != null) {
            mPages = new PageFolder(mOptions.report, WorkFolder.pageSources(), requests.size());
        }
        for (int i = 0; i < requests.size(); ++i) {
            if (i > 0) {
                mTo.println();
            }
            RequestReport report = new RequestReport(requests.get(i), names.get(i));
            Exhibits exhibits = mPages == null ? null : new Exhibits();
            try {
                runOne(report, exhibits, !mOptions.oneClient || i == requests.size() - 1);
            } finally {
                Progress.end();
            }
            if (mOptions.needsTrials()) {
                report.dependences = TrialSession.found(i);
            }
            if (mOptions.strict) {
                report.verdict =
                        new TagCheck(Readings.of(report)).strict(report.verdict, checker.warnings(i));
            }
            mTimeline.add(report);
            if (mPages != null) {
                report.page = mPages.add(report, exhibits, mTimeline, mSourceLines);
            }
            print(report);
            mJson.add(report);
            mVerdicts.add(report.verdict);
        }
        if (mOptions.json != null) {
            mJson.write(mOptions.json);
        }
        keepEvents(mOptions, mTimeline);
        if (mPages != null) {
            mPages.writeIndex(mOptions.requests());
        }
        return overall(requests);
    }

    /** Copies the events to where --events says, and writes the timeline to where --timeline says. */
    static void keepEvents(Options options, Timeline timeline) throws IOException {
        Path events = WorkFolder.events();
        if (options.events != null && events != null && Files.exists(events)) {
            Files.copy(events, options.events, StandardCopyOption.REPLACE_EXISTING);
        }
        if (options.timeline != null) {
            timeline.write(options.timeline, events, WorkFolder.algorithmTrace());
        }
    }

    private void print(RequestReport report) {
        new Summary(report, mTo, mOptions.wide).print();
        if (mOptions.params) {
            ParameterPrinter.print(report.handover(), mTo, mOptions.wide);
        }
        boolean hasRun = report.verdict.status() != Verdict.UNUSABLE;
        if (hasRun && mOptions.tags) {
            new TagPrinter(report).print(new TextLayout(mTo, mOptions.wide));
        }
        if (hasRun && !mOptions.explain.isEmpty()) {
            mSourceLines.learn(report.events);
            new ExplanationPrinter(report, mSourceLines, new TextLayout(mTo, mOptions.wide))
                    .print(mOptions.explain);
        }
        mTo.println(report.verdict.line());
    }

    // One verdict on several requests stands behind all of theirs.
    private int overall(List<RequestFile> requests) {
        List<String> failed = new ArrayList<>();
        int status = Verdict.OK;
        for (int i = 0; i < requests.size(); ++i) {
            if (mVerdicts.get(i).status() != Verdict.OK) {
                status = status == Verdict.OK ? mVerdicts.get(i).status() : status;
                failed.add(requests.get(i).file().toString());
            }
        }
        if (requests.size() > 1) {
            String reason = "%d of %d requests: %s".formatted(
                    failed.size(), requests.size(), String.join(", ", failed));
            mTo.println();
            if (mPages != null) {
                mTo.println("  page        " + mPages.index());
            }
            mTo.println(new Verdict(status, List.of(reason)).line());
        }
        return status;
    }

    private void runOne(RequestReport report, Exhibits exhibits, boolean lastOfClient)
            throws MistakeException, ErrnoException, IOException {
        RequestFile request = report.request;
        List<SynthesisedFrame> frames = RequestImages.frames(request, mPhotos);
        if (mClient == null) {
            mClient = new ServiceClient(request, report.stopwatch, mRecorder);
            report.events.add(mEvents.next());
            mLibrary = LibraryCheck.of(report.events);
        }
        // With a library that can't be used a request would only wait for a callback.
        boolean isUsable = mLibrary.status() == Verdict.OK;
        if (isUsable) {
            new RequestRunner(report, exhibits, mClient, mEvents, mOptions.out, mOptions.needsLookups())
                    .run(frames);
        }
        if (lastOfClient) {
            mClient.end(request, report.stopwatch);
            mClient = null;
        }
        report.events.add(mEvents.next());
        report.pass = mTraces.next();
        report.verdict = isUsable ? Judge.of(report) : mLibrary;
    }
}
