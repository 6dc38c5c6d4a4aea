package com.orlu.orlu3rdalgoservice.tool.model;

import com.google.gson.JsonElement;
import com.google.gson.JsonNull;
import com.google.gson.JsonObject;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** What one run of a request did, taken from its recording or from its events alone. */
public final class RunRecord {
    private static final double NANOSECONDS_PER_MILLISECOND = 1e6;

    private final String mName;
    private final boolean mIsComplete;
    private final boolean mHasEvents;
    private final List<Parameter> mParameters;
    private final List<byte[]> mCameraMetadata = new ArrayList<>();
    private final List<List<String>> mAlgorithms = new ArrayList<>();
    private final Map<String, String> mOutcomes = new LinkedHashMap<>();
    private final Map<String, Double> mTimes = new LinkedHashMap<>();
    private final List<Map<String, JsonElement>> mPuts = new ArrayList<>();
    private final List<RecordedImage> mResults;
    private final List<JsonObject> mFrames = new ArrayList<>();
    private final Map<String, JsonElement> mSettings = new LinkedHashMap<>();
    private final List<RecordedImage> mInputs = new ArrayList<>();
    private final List<HandedImage> mHanded = new ArrayList<>();
    private Path mFolder;

    private RunRecord(String name, RecordedEvents events, boolean isComplete, List<RecordedImage> results) {
        mName = name;
        mIsComplete = isComplete;
        mResults = results;
        mHasEvents = !events.calls().isEmpty();
        mParameters = new Handover(events).parameters();
        events.calls("setRaw").forEach(call -> mCameraMetadata.add(call.begin().bytes("bytes")));
        for (Call call : events.calls("process")) {
            mAlgorithms.add(call.begin().texts("algoList"));
            mOutcomes.put("process " + mAlgorithms.size(), call.outcome());
            if (call.end() != null) {
                mTimes.put("process " + mAlgorithms.size(), call.end().milliseconds());
            }
        }
        if (!mAlgorithms.isEmpty()) {
            mOutcomes.put("callbacks",
                    events.calls("callback")
                            .stream()
                            .map(call -> call.begin().text("name"))
                            .toList()
                            .toString());
        }
    }

    /**
     * A recording's run, under this name for people. MistakeException when its events are damaged so that
     * they can't be understood.
     */
    public static RunRecord of(RecordedRequest recorded, String name) throws MistakeException {
        try {
            return read(recorded, name);
        } catch (IllegalArgumentException | IllegalStateException | ClassCastException e) {
            String problem = recorded.eventsProblem();
            if (problem.isEmpty()) {
                throw e;
            }
            throw new MistakeException(recorded.folder().toString(), "", problem);
        }
    }

    private static RunRecord read(RecordedRequest recorded, String name) throws MistakeException {
        RunRecord run = new RunRecord(name, recorded.events(),
                recorded.isComplete() && recorded.problem().isEmpty(), recorded.images("result"));
        for (String call : List.of("processed", "updated")) {
            JsonObject part = recorded.part(call);
            if (part != null) {
                JsonElement status = part.get(part.has("thrown") ? "thrown" : "status");
                run.mOutcomes.put(call, status.getAsString());
                if (part.has("ns")) {
                    run.mTimes.put(call, part.get("ns").getAsLong() / NANOSECONDS_PER_MILLISECOND);
                }
            }
        }
        run.mFolder = recorded.folder();
        run.mInputs.addAll(recorded.images("input"));
        run.mHanded.addAll(HandedImage.of(recorded));
        run.mFrames.addAll(recorded.parts("frame"));
        run.addSettings("client ", recorded.part("client"));
        run.addSettings("property ", recorded.part("properties"));
        if (recorded.part("request") != null) {
            run.mSettings.put("request type", recorded.part("request").get("type"));
        }
        for (JsonObject part : recorded.parts("put")) {
            Map<String, JsonElement> values = new LinkedHashMap<>();
            part.getAsJsonObject("values").entrySet().forEach(
                    put -> values.put(put.getKey(), put.getValue()));
            run.mPuts.add(values);
        }
        return run;
    }

    private void addSettings(String kind, JsonObject part) {
        if (part != null) {
            part.getAsJsonObject("values").entrySet().forEach(
                    value -> mSettings.put(kind + value.getKey(), value.getValue()));
        }
    }

    /** The run of a request in events alone, which have no images. */
    public static RunRecord ofEvents(Path file) throws MistakeException {
        RecordedEvents events = new RecordedEvents();
        events.add(EventLines.read(file));
        if (events.calls().isEmpty()) {
            throw new MistakeException(
                    file.toString(), "", "no recording, no request file, and no events");
        }
        RunRecord run = new RunRecord(file.toString(), events, true, List.of());
        for (Event put : events.events("put")) {
            while (run.mPuts.size() <= put.number("frame")) {
                run.mPuts.add(new LinkedHashMap<>());
            }
            run.mPuts.get((int) put.number("frame")).put(put.text("tag"),
                    put.has("value") ? put.fields().get("value") : JsonNull.INSTANCE);
        }
        return run;
    }

    public String name() {
        return mName;
    }

    /** The folder of its recording, null when only events are known. */
    public Path folder() {
        return mFolder;
    }

    /** Whether it came to its end. */
    public boolean isComplete() {
        return mIsComplete;
    }

    /** Whether anything that it did is known; not of a recording that lost some frames since. */
    public boolean isKnown() {
        return mHasEvents || !mOutcomes.isEmpty();
    }

    /** Whether the probe was there. */
    public boolean hasEvents() {
        return mHasEvents;
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

    /** What each call came to: "processed" 0, "process 1" "returned 0". */
    public Map<String, String> outcomes() {
        return mOutcomes;
    }

    /** Whether a call to the library returned something else than 0, or a request was not called back. */
    public boolean hasFailed() {
        boolean isSilent = !mAlgorithms.isEmpty() && mOutcomes.get("callbacks").equals("[]");
        return isSilent || List.of("processed", "updated").stream()
                .anyMatch(call -> !mOutcomes.getOrDefault(call, "0").equals("0"));
    }

    /** Milliseconds, likewise. */
    public Map<String, Double> times() {
        return mTimes;
    }

    /** For each frame, what was put. */
    public List<Map<String, JsonElement>> puts() {
        return mPuts;
    }

    /** What went in, for each frame: "captureResult" and "composition". Empty when only events are known. */
    public List<JsonObject> frames() {
        return mFrames;
    }

    /** What went in beside the frames and images, by what it is: "property ...", "client ...". */
    public Map<String, JsonElement> settings() {
        return mSettings;
    }

    /** The images that went in. */
    public List<RecordedImage> inputs() {
        return mInputs;
    }

    /** The images as the algorithm library saw them; none where the probe kept none. */
    public List<HandedImage> handed() {
        return mHanded;
    }

    public List<RecordedImage> results() {
        return mResults;
    }
}
