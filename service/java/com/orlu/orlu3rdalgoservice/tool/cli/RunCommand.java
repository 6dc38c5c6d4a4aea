package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.record.RequestRecorder;
import com.orlu.orlu3rdalgoservice.record.RequestRecorder.Pixels;
import com.orlu.orlu3rdalgoservice.tool.run.RequestNames;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

import picocli.CommandLine.ArgGroup;
import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;
import picocli.CommandLine.Spec;

/** ./run without a subcommand: runs requests. The launcher reads some of these options, too. */
@Command(customSynopsis = {"./run [options] [request.json | FOLDER ...]", "       ./run SUBCOMMAND ..."},
        commandListHeading = "%nSubcommands, each with a --help of its own:%n",
        description = "Send camera requests through the post-processing library as the service does, and "
                + "show what went in, what ran and what came back. Without a request file, run "
                + "samples/night.json.",
        footer = {
            "  ./run samples/clarity.json            Run another request",
            "  ./run --params samples/capture.json   Print every parameter passed",
            "  ./run --log --photo my.jpg            Print the log; make frames from a photo",
            "  ./run diff a.json b.json              Compare two requests",
            "  ./run tags zoom                       List the tags with zoom in their names",
            """

            The last line of a run is the verdict: "verdict  ok", or what went wrong. The exit \
            status is 0 if all went well, 1 if a request failed, 2 if the command line or a request file is \
            invalid (nothing runs), and 3 if the algorithm library can't be used: it can't be opened, has no \
            entry, lacks a mandatory callable, creates no client, or crashes before the first request. If \
            the library ends the process, crash.log beside the images shows where.
            """,
            """
            Set ANDROID_LOG_TAGS to filter the log ("_V_VASJNI-VRequest:D *:S"), and LD_LIBRARY_PATH to use \
            an algorithm library other than the stand-in. The pages in docs/ describe the options: \
            explain.md, events.md, timeline.md, report.md, recording.md and many_shots.md.
            """})
final class RunCommand implements Subcommand {
    @ArgGroup(heading = "%nOutput to the terminal:%n", validate = false)
    Shown shown = new Shown();
    @ArgGroup(heading = "%nOutput to files:%n", validate = false)
    Written written = new Written();
    @ArgGroup(heading = "%nRequests:%n", validate = false)
    Tried tried = new Tried();
    @Parameters(paramLabel = "request.json", hidden = true)
    List<Path> files = new ArrayList<>();
    @Option(names = "--version", versionHelp = true, description = "Print the version")
    private boolean mVersion;
    // The base name of output files, set by the parent process.
    @Option(names = "--as", paramLabel = "NAME", hidden = true)
    String name;
    @Spec
    CommandSpec spec;
    private List<Path> mRequests;

    static final class Shown {
        @Option(names = "--params", description = "Print every parameter passed to the algorithms")
        boolean params;
        /** Keys of parameters, with or without sections, and words such as "all". */
        @Option(names = "--explain", paramLabel = "[SECTION/]KEY", arity = "1",
                completionCandidates = Candidates.Explained.class,
                description = "Print the origin of KEY, or of \"algorithms\" or \"all\"")
        List<String> explain = new ArrayList<>();
        @Option(names = "--tags", description = "Print which tags of each frame were read")
        boolean tags;
        @Option(names = "--times", description = "Print time, page faults and memory of each stage")
        boolean times;
        @Option(names = "--log", description = "Print the library's log on standard error")
        boolean log;
        @Option(names = "--wide", description = "Don't cut lines to 80 columns")
        boolean wide;
    }

    static final class Written extends ResultOptions {
        @Option(names = "--out", paramLabel = "DIR",
                description = "Write the resulting images to DIR (default: out)")
        Path out = Path.of("out");
        @Option(names = "--events", paramLabel = "FILE",
                description = "Write all calls and tag look-ups as JSON lines")
        Path events;
        @Option(names = "--timeline", paramLabel = "FILE", description = "Write a timeline for trace viewers")
        Path timeline;
        @Option(names = "--report", paramLabel = "DIR",
                description = "Write an HTML page on each request")
        Path report;
        @Option(names = "--record", paramLabel = "DIR", description = "Record each request in a folder")
        Path record;
    }

    static final class Tried {
        @Option(names = "--check", description = "Check the request files and run nothing")
        boolean check;
        @Option(names = "--strict", description = "Fail on unread tags, wrong types, and warnings")
        boolean strict;
        @Option(names = "--validate", description = "Fail when the service or library breaks the contract")
        boolean validate;
        @Option(names = "--photo", paramLabel = "FILE", description = "Make the frames from this photo")
        Path photo;
        @Option(names = "--tag", paramLabel = "NAME=VALUE", arity = "1",
                description = "Set a tag in all frames; repeatable")
        List<String> tags = List.of();
        @Option(names = "--jobs", paramLabel = "N",
                description = "Run N requests in parallel, each in a process")
        int jobs;
        @Option(names = "--burst", paramLabel = "N",
                description = "Send one request N times; print latencies")
        int burst;
        @Option(names = "--interval", paramLabel = "MS",
                description = "With --burst: send a request every MS milliseconds")
        int interval;
        @Option(names = "--in-flight", paramLabel = "N",
                description = "With --burst: limit requests in flight (default: 4)")
        int inFlight = 4;
        @Option(names = "--algo-delay", paramLabel = "MS[-MS][,unordered]",
                description = "Delay the stand-in's callbacks: fixed or random")
        String algoDelay;
        @Option(names = "--one-client", description = "Run all requests on one client")
        boolean oneClient;
        @Option(names = "--arm", description = "Run the 32-bit ARM library in an emulator")
        boolean arm;
    }

    @Override
    public void describe(CommandSpec own) {
        own.version(System.getProperty("orlu.version", "unknown"));
    }

    @Override
    public int run() throws MistakeException, ErrnoException, IOException {
        checked();
        if (tried.burst > 0) {
            return new BurstSession(this).run();
        }
        return tried.jobs > 0 ? new JobsSession(this).run() : new Session(this).run();
    }

    @Override
    public int afterDeath(int exitStatus) throws IOException {
        checked();
        if (tried.jobs > 0) {
            throw new IllegalStateException("the process ended, status " + exitStatus);
        }
        return new PostMortem(this, exitStatus).run();
    }

    /** Throws IllegalArgumentException if options are invalid or can't be combined. Returns this command. */
    RunCommand checked() {
        if (isGiven("--jobs")) {
            needsPositive("--jobs", tried.jobs);
            refuse(List.of("--events", "--timeline", "--record", "--one-client", "--log"),
                    " can't be combined with --jobs");
        }
        if (isGiven("--burst")) {
            needsPositive("--burst", tried.burst);
            needsPositive("--in-flight", tried.inFlight);
            refuse(List.of("--params", "--explain", "--tags", "--times", "--report", "--record", "--check",
                           "--strict", "--jobs", "--one-client"),
                    " can't be combined with --burst");
            if (requests().size() != 1 || tried.interval < 0) {
                throw new IllegalArgumentException(
                        "--burst: expected one request and an interval of at least 0, found "
                        + requests().size() + " and " + tried.interval);
            }
        } else {
            refuse(List.of("--interval", "--in-flight"), " requires --burst");
        }
        if (tried.algoDelay != null && !tried.algoDelay.matches("[0-9]{1,6}(-[0-9]{1,6})?(,unordered)?")) {
            throw new IllegalArgumentException("--algo-delay: expected MS[-MS][,unordered], found \""
                    + tried.algoDelay + '"');
        }
        if (tried.photo != null && !Files.isRegularFile(tried.photo)) {
            throw new IllegalArgumentException("--photo: no such file: " + tried.photo);
        }
        return this;
    }

    private boolean isGiven(String option) {
        return spec.commandLine().getParseResult().hasMatchedOption(option);
    }

    private void refuse(List<String> options, String why) {
        options.stream().filter(this::isGiven).findFirst().ifPresent(option -> {
            throw new IllegalArgumentException(option + why);
        });
    }

    static void needsPositive(String option, int value) {
        if (value < 1) {
            throw new IllegalArgumentException(option + ": expected a number of at least 1, found " + value);
        }
    }

    /**
     * Returns the recorder, which creates a folder for each run: in the folder of --record, else in the
     * folder that the recorder's property names, else in the work folder. The work folder keeps only the
     * latest run, with pixels only for --report. Returns null without any of these folders.
     */
    RequestRecorder recorder() {
        if (written.record != null) {
            return new RequestRecorder(written.record.toFile(), Integer.MAX_VALUE, Long.MAX_VALUE);
        }
        RequestRecorder own = RequestRecorder.ofProperties();
        if (own != null || runs() == null) {
            return own;
        }
        RequestRecorder latest = new RequestRecorder(runs().toFile(), 1, Long.MAX_VALUE);
        latest.setPixels(written.report == null ? Pixels.NONE : Pixels.OF_JAVA);
        return latest;
    }

    /** Returns the folder of --record, else the folder of runs in the work folder; null without either. */
    Path runs() {
        return written.record == null ? WorkFolder.runs() : written.record;
    }

    /** Throws an IllegalArgumentException if a file or folder can't or must not be written. */
    void checkWritten() {
        GivenPaths paths = new GivenPaths().folder("--out", written.out).folder("--record", written.record)
                .folder("--report", written.report);
        written.check(paths);
        paths.file("--events", written.events).file("--timeline", written.timeline);
    }

    /** Returns whether to record look-ups of tags. They are so many that recording slows the request. */
    boolean needsLookups() {
        return written.events != null || needsTrials();
    }

    /**
     * Returns whether a requested output needs trials. The launcher has started them, unless only --report
     * needs them and ORLU_TRIALS is "off".
     */
    boolean needsTrials() {
        return shown.tags || tried.strict || written.report != null || !shown.explain.isEmpty();
    }

    /** Returns the request files, or the launcher's default if none are given. */
    List<Path> requests() {
        String usual = System.getProperty("orlu.request");
        if (mRequests == null) {
            mRequests = GivenPaths.requests(
                    !files.isEmpty() || usual == null ? files : List.of(Path.of(usual)));
        }
        return mRequests;
    }

    List<String> names() {
        return name == null ? RequestNames.of(requests()) : List.of(name);
    }
}
