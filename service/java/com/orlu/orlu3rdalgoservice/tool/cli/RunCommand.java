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
        description = "Sends camera requests through the post-processing library, as the service does, and "
                + "shows what went in, what ran and what came back. Without a request file it takes "
                + "samples/night.json.",
        footer = {
            "  ./run samples/clarity.json            another request",
            "  ./run --params samples/capture.json   every parameter handed over",
            "  ./run --log --photo my.jpg            the library's log, frames of a photo",
            "  ./run diff a.json b.json              what two requests do differently",
            "  ./run tags zoom                       what is known of the tags on zoom",
            """

            The last line is the verdict: "verdict  ok", or what the algorithm library did wrong. The \
            status is 0 when all went well, 1 when a request failed, 2 when the command line or a request \
            file can't be taken (nothing runs then), 3 when the algorithm library can't be used: it can't be \
            opened, has no entry, lacks a callable that no request can do without, or makes no client. When \
            it ends the process, the file crash.log beside the images says where.
            """,
            """
            Set ANDROID_LOG_TAGS to filter the log ("_V_VASJNI-VRequest:D *:S"), and LD_LIBRARY_PATH to put \
            another algorithm library before the stand-in.
            """})
final class RunCommand implements Subcommand {
    @ArgGroup(heading = "%nWhat is shown:%n", validate = false)
    Shown shown = new Shown();
    @ArgGroup(heading = "%nWhat is written:%n", validate = false)
    Written written = new Written();
    @ArgGroup(heading = "%nWhat is run:%n", validate = false)
    Tried tried = new Tried();
    @Parameters(paramLabel = "request.json", hidden = true)
    List<Path> files = new ArrayList<>();
    @Option(names = "--version", versionHelp = true, description = "print the version")
    private boolean mVersion;
    // The base name of output files, set by the process that starts this one.
    @Option(names = "--as", paramLabel = "NAME", hidden = true)
    String name;
    @Spec
    CommandSpec spec;
    private List<Path> mRequests;

    static final class Shown {
        @Option(names = "--params", description = "print every parameter handed to the algorithms")
        boolean params;
        /** Keys of parameters, with or without sections, and words such as "all". */
        @Option(names = "--explain", paramLabel = "[SECTION/]KEY", arity = "1",
                completionCandidates = Candidates.Explained.class,
                description = "say who wrote this parameter and which tags it depends on, found by trying: "
                        + "a key, \"algorithms\" or \"all\" (docs/explain.md)")
        List<String> explain = new ArrayList<>();
        @Option(names = "--tags", description = "print what was read of each frame's tags, what was not, "
                + "and what stands where one is absent")
        boolean tags;
        @Option(names = "--log", description = "show the library's log on standard error")
        boolean log;
        @Option(names = "--wide", description = "print lines of any length, instead of cutting them to 80 "
                + "columns")
        boolean wide;
    }

    static final class Written extends ResultOptions {
        @Option(names = "--out", paramLabel = "DIR", description = "write the resulting images there "
                + "(default: out)")
        Path out = Path.of("out");
        @Option(names = "--events", paramLabel = "FILE", description = "keep all that passed between the "
                + "library and the algorithm library, and every look-up of a tag, as JSON lines "
                + "(docs/events.md)")
        Path events;
        @Option(names = "--timeline", paramLabel = "FILE",
                description = "write a timeline of the run that trace viewers open (docs/timeline.md)")
        Path timeline;
        @Option(names = "--report", paramLabel = "DIR", description = "write a page on each request that a "
                + "browser shows: pictures, memory, timeline, parameters, tags, log, and what looks wrong "
                + "(docs/report.md)")
        Path report;
        @Option(names = "--record", paramLabel = "DIR",
                description = "record each request in a folder (docs/recording.md)")
        Path record;
    }

    static final class Tried {
        @Option(names = "--check", description = "only read the request files and say whether they are right")
        boolean check;
        @Option(names = "--strict", description = "fail when a tag is never read, or of a wrong type, or "
                + "the request file has a warning")
        boolean strict;
        @Option(names = "--photo", paramLabel = "FILE",
                description = "make the frames of this photo instead of the request's own")
        Path photo;
        @Option(names = "--tag", paramLabel = "NAME=VALUE", arity = "1", description = "set this tag in all "
                + "frames; can be given again")
        List<String> tags = List.of();
        @Option(names = "--jobs", paramLabel = "N", description = "run N requests side by side, each in a "
                + "process of its own")
        int jobs;
        @Option(names = "--burst", paramLabel = "N",
                description = "send one request N times on one client, and "
                        + "print latencies and throughput (docs/many_shots.md)")
        int burst;
        @Option(names = "--interval", paramLabel = "MS",
                description = "of a burst: send a request every so many "
                        + "milliseconds (default: as soon as possible)")
        int interval;
        @Option(names = "--in-flight", paramLabel = "N",
                description = "of a burst: have at most N requests in "
                        + "flight (default: 4)")
        int inFlight = 4;
        @Option(names = "--algo-delay", paramLabel = "MS[-MS][,unordered]",
                description = "let the stand-in call "
                        + "back after so many milliseconds: always as many, at random, or in any order")
        String algoDelay;
        @Option(names = "--one-client", description = "run all requests on one client instead of one for "
                + "each")
        boolean oneClient;
        @Option(names = "--arm", description = "run the 32-bit ARM library, in an ARM JVM under an emulator")
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

    /** Returns this if the options fit together; else throws an IllegalArgumentException. */
    RunCommand checked() {
        if (isGiven("--jobs")) {
            needsPositive("--jobs", tried.jobs);
            refuse(List.of("--events", "--timeline", "--record", "--one-client", "--log"),
                    " can't be combined with --jobs");
        }
        if (isGiven("--burst")) {
            needsPositive("--burst", tried.burst);
            needsPositive("--in-flight", tried.inFlight);
            refuse(List.of("--params", "--explain", "--tags", "--report", "--record", "--check", "--strict",
                           "--jobs", "--one-client"),
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
            throw new IllegalArgumentException("--algo-delay: expected MS, MS-MS or MS-MS,unordered, found \""
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
     * Returns the recorder that creates the folder of each run: in the folder of --record, else in that of
     * the recorder's own property, else in the work folder. The work folder keeps only the latest run, with
     * pixels if a page may need them. Null without a work folder.
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

    /** The folder that holds the runs' folders; null without a work folder. */
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

    /** Whether to record look-ups of tags. They are many, and cost as much as the request. */
    boolean needsLookups() {
        return written.events != null || needsTrials();
    }

    /** Whether a requested output needs trials, which the launcher runs first. */
    boolean needsTrials() {
        return shown.tags || tried.strict || written.report != null || !shown.explain.isEmpty();
    }

    /** The request files; the launcher's default if there are none. */
    List<Path> requests() {
        String usual = System.getProperty("orlu.request");
        if (mRequests == null) {
            mRequests = GivenPaths.requests(
                    !files.isEmpty() || usual == null ? files : List.of(Path.of(usual)));
        }
        return mRequests;
    }

    /** A name for each request file. */
    List<String> names() {
        return name == null ? RequestNames.of(requests()) : List.of(name);
    }
}
