package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.run.RequestRunner.Ran;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch.Stage;
import com.orlu.orlu3rdalgoservice.tool.text.Frames;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** One run of a request: made in this process, or read from its folder or its events. Immutable. */
public final class Run {
    private static final double NANOSECONDS_PER_MILLISECOND = 1e6;

    private final String mName;
    private final Path mFolder;
    private final RequestFile mRequest;
    private final Json mRoot;
    private final Json mOutcome;
    private String mProblem;
    private final List<String> mNotes;
    private final RecordedEvents mEvents;
    private final List<Parameter> mParameters;
    private final List<byte[]> mCameraMetadata = new ArrayList<>();
    private final List<List<String>> mAlgorithms = new ArrayList<>();
    private final Map<String, String> mOutcomes = new LinkedHashMap<>();
    private final Map<String, Double> mTimes = new LinkedHashMap<>();
    private final List<Map<String, Json>> mPuts = new ArrayList<>();
    private final List<ImageLayout> mResults = new ArrayList<>();
    private final List<HandedImage> mHanded = new ArrayList<>();
    private final Handover mHandover;
    // mStages, mStageTimes and mPass have values only for a run in this process.
    private final List<Stage> mStages = new ArrayList<>();
    private List<StageTime> mStageTimes = List.of();
    private Ran mRan = Ran.NONE;
    private List<ImageLayout> mOutputs = List.of();
    private AlgorithmPass mPass;

    private Run(String name, Path folder, RequestFile request, Json root, Json outcome, String problem,
            List<String> notes, RecordedEvents events) {
        mName = name;
        mFolder = folder;
        mRequest = request;
        mRoot = root;
        mOutcome = outcome;
        mProblem = problem;
        mNotes = notes;
        mEvents = events;
        mHandover = new Handover(events);
        mParameters = mHandover.parameters();
        events.calls("setRaw").forEach(call -> mCameraMetadata.add(call.begin().bytes("bytes")));
        for (Call call : events.calls("process")) {
            mAlgorithms.add(call.begin().texts("algoList"));
            mOutcomes.put("process " + mAlgorithms.size(), call.outcome());
            if (call.end() != null) {
                mTimes.put("process " + mAlgorithms.size(), call.end().milliseconds());
            }
        }
        if (!mAlgorithms.isEmpty()) {
            mOutcomes.put("callbacks", events.calls("callback").stream()
                    .map(call -> call.begin().text("name")).toList().toString());
        }
    }

    static Run of(String name, Path folder, RequestFile request, Json root, Json outcome, String problem,
            List<String> notes) throws MistakeException {
        Run run = new Run(name, folder, request, root, outcome, problem, notes,
                RunFolder.events(folder.resolve(RunFolder.EVENTS)));
        run.mRan = Ran.unknown(request.inputs());
        run.mOutputs = request.outputs().stream().map(ImagePlan::layout).toList();
        try {
            run.readOutcome();
        } catch (MistakeException e) {
            // Keeps the part of the outcome that was read.
            run.mProblem = problem.isEmpty() ? e.getMessage() : problem;
        }
        run.mHanded.addAll(HandedImage.of(run));
        return run;
    }

    private void readOutcome() throws MistakeException {
        for (String call : List.of("processed", "updated")) {
            Json made = mOutcome.get(call);
            if (made != null) {
                mOutcomes.put(call, made.require(made.has("thrown") ? "thrown" : "status").text());
                if (made.has("ns")) {
                    mTimes.put(call, made.get("ns").real() / NANOSECONDS_PER_MILLISECOND);
                }
            }
        }
        for (Json frame : mOutcome.list("put")) {
            mPuts.add(frame.members());
        }
        for (Json image : mOutcome.list("outputs")) {
            mResults.add(ImageLayout.read(mFolder, image));
        }
    }

    /**
     * Returns a run in this process. `name` is the prefix of its files' names. `pass` is null if the library
     * does not report its work.
     */
    public static Run of(String name, RequestFile request, RecordedEvents events, Stopwatch stopwatch,
            AlgorithmPass pass, Ran ran) {
        Run run = new Run(
                name, null, request, Json.none(), Json.none(), "", List.of(), events);
        run.mStages.addAll(stopwatch.stages());
        run.mStageTimes = StageTime.of(stopwatch.marks(), events);
        run.mPass = pass;
        run.mRan = ran;
        run.mOutputs = ran.outputsBefore();
        run.mResults.addAll(ran.outputsAfter());
        return run;
    }

    /** Returns a run from a file of events alone; such a run has no images. */
    public static Run ofEvents(Path file) throws MistakeException {
        RecordedEvents events = RunFolder.events(file);
        if (events.calls().isEmpty()) {
            throw new MistakeException(file.toString(), "", "expected a recording, request file or events");
        }
        Run run = new Run(
                file.toString(), null, null, Json.none(), Json.none(), "", List.of(), events);
        for (Event put : events.events("put")) {
            long frame = put.number("frame");
            if (frame < 0 || frame > events.events().size()) {
                throw put.fields().error("frame", "expected the index of a frame, found " + frame);
            }
            while (run.mPuts.size() <= frame) {
                run.mPuts.add(new LinkedHashMap<>());
            }
            if (put.has("value")) {
                run.mPuts.get((int) frame).put(put.text("tag"), put.fields().get("value"));
            }
        }
        return run;
    }

    public String name() {
        return mName;
    }

    /** The folder; null for a run in this process, or if only events are known. */
    public Path folder() {
        return mFolder;
    }

    /** The request that ran; null if only events are known. */
    public RequestFile request() {
        return mRequest;
    }

    /** The content of request.json; an empty object if missing. */
    public Json root() {
        return mRoot;
    }

    /** The content of outcome.json; an empty object if missing. */
    public Json outcome() {
        return mOutcome;
    }

    /** The recorder's version, and the time and machine of the recording; empty without request.json. */
    public Json header() {
        return mRoot.at("recording");
    }

    /** The parts of the request that can't be reproduced. */
    public List<String> notes() {
        return mNotes;
    }

    public RecordedEvents events() {
        return mEvents;
    }

    /** The problem with the events file; empty if the file is intact or was not recorded. */
    public String eventsProblem() {
        return mFolder == null ? "" : RunFolder.eventsProblem(mFolder, mOutcome);
    }

    /** Whether the run finished and its outcome is readable. */
    public boolean isComplete() {
        return mProblem.isEmpty();
    }

    /** Why the run is incomplete; empty if it is complete. */
    public String problem() {
        return mProblem;
    }

    /** Whether the run's results are known. A trim that changes the request removes them. */
    public boolean isKnown() {
        return hasEvents() || !mOutcomes.isEmpty();
    }

    /** Whether the probe recorded the run. */
    public boolean hasEvents() {
        return !mEvents.calls().isEmpty();
    }

    public List<Parameter> parameters() {
        return mParameters;
    }

    public List<byte[]> cameraMetadata() {
        return mCameraMetadata;
    }

    public List<List<String>> algorithms() {
        return mAlgorithms;
    }

    /** The outcome by call, such as "processed": "0" and "process 1": "returned 0". */
    public Map<String, String> outcomes() {
        return mOutcomes;
    }

    /**
     * Whether a call into the native library threw or returned a status other than 0, or the algorithm
     * library's process operation was called but no callback arrived.
     */
    public boolean hasFailed() {
        boolean isSilent = !mAlgorithms.isEmpty() && mOutcomes.get("callbacks").equals("[]");
        return isSilent || List.of("processed", "updated").stream()
                .anyMatch(call -> !mOutcomes.getOrDefault(call, "0").equals("0"));
    }

    /** Duration of each call, in milliseconds. */
    public Map<String, Double> times() {
        return mTimes;
    }

    /** The values that the native side put into each frame, by key. */
    public List<Map<String, Json>> puts() {
        return mPuts;
    }

    /** The input metadata of each frame: "captureResult" and "composition". Empty without a folder. */
    public List<Json> frames() {
        return mRoot.at("frames").elements();
    }

    /**
     * The inputs other than frames and images, by name: "property ...", "client ...", "request type". Empty
     * without a folder.
     */
    public Map<String, Json> settings() throws MistakeException {
        Map<String, Json> settings = new LinkedHashMap<>();
        for (String part : List.of("client", "properties")) {
            String kind = part.equals("client") ? "client " : "property ";
            if (mRoot.has(part)) {
                mRoot.get(part).members().forEach((name, value) -> settings.put(kind + name, value));
            }
        }
        Json type = mRoot.at("request").get("type");
        if (type != null) {
            settings.put("request type", type);
        }
        return settings;
    }

    /** The input images; none if only events are known. */
    public List<ImageLayout> inputs() {
        return mRequest == null ? List.of() : mRequest.inputs().stream().map(ImagePlan::layout).toList();
    }

    /** The output images before the run. */
    public List<ImageLayout> outputs() {
        return mOutputs;
    }

    /** The images as the algorithm library saw them; none without the probe's pixels. */
    public List<HandedImage> handed() {
        return mHanded;
    }

    /** The output images after the run. */
    public List<ImageLayout> results() {
        return mResults;
    }

    /** Describes each trim, such as "cropped to 320x240, only frames 0, 2 of the recording"; "" for none. */
    public String trimmed() throws MistakeException {
        StringBuilder text = new StringBuilder();
        for (Json cut : mRoot.list("trimmed")) {
            // After the first trim, frame numbers refer to the trimmed copy instead of the recording.
            text.append(text.isEmpty() ? trimmed(cut, "recording") : ", then " + trimmed(cut, "copy"));
        }
        return text.toString();
    }

    private static String trimmed(Json cut, String of) throws MistakeException {
        List<Integer> frames = new ArrayList<>();
        for (Json frame : cut.list("frames")) {
            frames.add(frame.integer(0, Integer.MAX_VALUE));
        }
        String crop = cut.has("crop") ? "cropped to " + cut.get("crop").string() : "";
        String kept = frames.isEmpty() ? "" : "only " + Frames.text(frames) + " of the " + of;
        String facts = cut.has("private") ? "without private facts" : "";
        return Stream.of(crop, kept, facts).filter(part -> !part.isEmpty()).collect(Collectors.joining(", "));
    }

    public Handover handover() {
        return mHandover;
    }

    /** The algorithm list in the request's first composition; empty if there is none. */
    public List<String> askedAlgorithms() {
        List<FramePlan> frames = mRequest.frames().frames();
        Object list = frames.isEmpty() ? null : frames.get(0).composition().get("orlu.control.algoType");
        return list instanceof String[] names ? List.of(names) : List.of();
    }

    /**
     * The algorithms that the algorithm library received but reports neither as run nor as skipped. Empty if
     * the library does not report its work.
     */
    public List<String> idleAlgorithms() {
        if (mPass == null) {
            return List.of();
        }
        List<String> idle = new ArrayList<>(mHandover.algorithms());
        idle.removeAll(mPass.ran());
        idle.removeAll(mPass.skipped());
        return idle;
    }

    /** The algorithm library's report of its work; null if there is none. */
    public AlgorithmPass pass() {
        return mPass;
    }

    /**
     * The results of a run in this process. For a run that was read from a folder, only the inputs are known;
     * for a run from events alone, nothing.
     */
    public Ran ran() {
        return mRan;
    }

    /** Java's calls and waits, in the order of execution. */
    public List<Stage> stages() {
        return mStages;
    }

    /** The stages that cover the run without gaps; none without --times. */
    public List<StageTime> stageTimes() {
        return mStageTimes;
    }

    /** The duration of each of stages(), in milliseconds. */
    public Map<String, Double> milliseconds() {
        Map<String, Double> times = new LinkedHashMap<>();
        mStages.forEach(stage -> times.put(
                stage.name(), (stage.end() - stage.start()) / NANOSECONDS_PER_MILLISECOND));
        return times;
    }
}
