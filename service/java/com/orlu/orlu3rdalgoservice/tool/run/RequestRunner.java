package com.orlu.orlu3rdalgoservice.tool.run;

import android.os.SystemProperties;
import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.datastruct.VRequest;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSize;
import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.ImageState;
import com.orlu.orlu3rdalgoservice.tool.image.OutputReader;
import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;
import com.orlu.orlu3rdalgoservice.tool.judge.Callbacks;
import com.orlu.orlu3rdalgoservice.tool.judge.Exhibits;
import com.orlu.orlu3rdalgoservice.tool.model.LineFile;
import com.orlu.orlu3rdalgoservice.tool.model.RequestReport;
import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;

/** Carries one request through the native library on a client, as the service does, and reports on it. */
public final class RequestRunner {
    private static final long CALLBACK_MILLISECONDS = RequestReport.CALLBACK_SECONDS * 1000L;
    /** How much longer a callback that did not come is waited for, to tell a late one from none. */
    private static final long LATE_MILLISECONDS = 2_000;
    private static final long POLL_MILLISECONDS = 50;

    private final ServiceClient mClient;
    private final LineFile mEvents;
    private final Path mOut;
    private final boolean mKeepsLookups;
    private final RequestReport mReport;
    private final Exhibits mExhibits;
    private final RequestFile mRequest;

    private final List<RecordedComposition> mCompositions = new ArrayList<>();
    private final List<ImageBuffer> mInputs = new ArrayList<>();
    private final List<ImageBuffer> mOutputs = new ArrayList<>();

    /** With exhibits, which are null for none, what a page shows of the images is kept there. */
    public RequestRunner(RequestReport report, Exhibits exhibits, ServiceClient client, LineFile events,
            Path out, boolean keepsLookups) {
        mReport = report;
        mExhibits = exhibits;
        mRequest = report.request;
        mClient = client;
        mEvents = events;
        mOut = out;
        mKeepsLookups = keepsLookups;
    }

    /** Runs the request on frames made of its photo, which are none when it has no inputs. */
    public void run(List<SynthesisedFrame> frames) throws ErrnoException, IOException, MistakeException {
        try (CallbackInbox inbox = new CallbackInbox(mClient.clientId())) {
            mRequest.properties().forEach(SystemProperties::set);
            makeCompositions();
            makeImages(frames);
            if (mExhibits != null) {
                mExhibits.before(mInputs);
            }
            Progress.show("processing " + mInputs.size() + " inputs");
            process(inbox);
            Progress.show("comparing and writing " + mOutputs.size() + " outputs");
            mReport.callbacks = inbox.reports();
            awaitLateCallback();
            List<OutputReader> outputs = mOutputs.stream().map(OutputReader::of).toList();
            reportProblems(outputs);
            mReport.images.addAll(new OutputImages(mReport, mOut).write(frames, mInputs, outputs));
            mReport.noise.addAll(new NoiseMeasure(mReport).lines(frames, outputs));
            if (mExhibits != null) {
                mExhibits.after(mReport.baseFrame(), mInputs, mOutputs, outputs);
            }
        } finally {
            mInputs.forEach(ImageBuffer::close);
            mOutputs.forEach(ImageBuffer::close);
        }
    }

    // Only when the wait ended without one: then a moment more shows whether one comes at all.
    private void awaitLateCallback() throws IOException {
        mReport.events.add(mEvents.next());
        long end = System.nanoTime() + LATE_MILLISECONDS * 1_000_000;
        while (new Callbacks(mReport).isMissing() && !new Callbacks(mReport).hasEnd()
                && System.nanoTime() < end && sleep()) {
            mReport.events.add(mEvents.next());
        }
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

    private void reportProblems(List<OutputReader> outputs) {
        for (int i = 0; i < outputs.size(); ++i) {
            if (!outputs.get(i).problem().isEmpty()) {
                mReport.outputProblems.add("output " + i + " is " + outputs.get(i).problem());
            }
        }
    }

    private void makeCompositions() {
        for (FramePlan frame : mRequest.frames().frames()) {
            RecordedComposition composition = new RecordedComposition(frame.captureResult());
            frame.composition().forEach(composition::putMetadata);
            mCompositions.add(composition);
        }
    }

    // From the call on, so that no event is of what is recorded before it.
    private void recordLookups() throws IOException {
        EventLog events = mKeepsLookups ? EventLog.ofEnvironment() : null;
        for (int i = 0; i < mCompositions.size(); ++i) {
            mCompositions.get(i).record(events, i);
        }
    }

    private void makeImages(List<SynthesisedFrame> frames) throws ErrnoException, MistakeException {
        FrameSize size = FrameSize.of(mRequest, frames);
        for (ImagePlan plan : mRequest.inputs()) {
            Progress.show("filling input " + (mInputs.size() + 1) + " of " + mRequest.inputs().size());
            mInputs.add(RequestImages.input(plan, frames, size));
            mReport.inputs.add(mInputs.get(mInputs.size() - 1).plan());
        }
        for (ImagePlan plan : mRequest.outputs()) {
            mOutputs.add(plan.layout() == null ? ImageBuffer.empty(size.applyTo(plan))
                    : ImageBuffer.recorded(plan));
        }
    }

    private static List<VImageIPC> descriptors(List<ImageBuffer> images) {
        return new ArrayList<>(images.stream().map(ImageBuffer::descriptor).toList());
    }

    private void process(CallbackInbox inbox) throws IOException {
        VRequest request = new VRequest(mRequest.id(), mRequest.type());
        List<VImageIPC> outputs = descriptors(mOutputs);
        outputs.forEach(image -> mReport.outputsBefore.add(ImageState.of(image)));
        try (RequestCall call = new RequestCall(mClient, request, mRequest.properties(), descriptors(mInputs),
                outputs, mCompositions)) {
            recordLookups();
            List<Map<String, Object>> before = snapshots();
            mReport.waitStart = System.nanoTime();
            check("processImage", mReport.stopwatch.time("process", call::process));
            if (mRequest.fullAsync()) {
                awaitResult(inbox, call, before);
            } else {
                mReport.waitEnd = System.nanoTime();
            }
            outputs.forEach(image -> mReport.outputsAfter.add(ImageState.of(image)));
            mReport.put.addAll(changes(before));
        }
    }

    private void awaitResult(CallbackInbox inbox, RequestCall call, List<Map<String, Object>> before) {
        Long address = mReport.stopwatch.time("wait", () -> inbox.awaitRequest(CALLBACK_MILLISECONDS));
        mReport.waitEnd = System.nanoTime();
        if (address != null) {
            before.get(0).put("nativeRequestAddr", address);
            check("processImageUpdateResult",
                    mReport.stopwatch.time("update result", () -> call.update(address)));
        }
    }

    private void check(String call, int status) {
        if (status != 0) {
            mReport.problems.add(call + " returned " + status);
        }
    }

    private List<Map<String, Object>> snapshots() {
        return new ArrayList<>(mCompositions.stream().map(CaptureResultComposition::snapshot).toList());
    }

    // A value put again is another object, so that a key put with the value it had shows as well.
    private List<Map<String, Object>> changes(List<Map<String, Object>> before) {
        List<Map<String, Object>> all = new ArrayList<>();
        for (int i = 0; i < mCompositions.size(); ++i) {
            Map<String, Object> old = before.get(i);
            Map<String, Object> changed = new LinkedHashMap<>();
            mCompositions.get(i).snapshot().forEach((key, value) -> {
                if (old.get(key) != value) {
                    changed.put(key, Objects.requireNonNullElse(value, "null"));
                }
            });
            all.add(changed);
        }
        return all;
    }
}
