package com.orlu.orlu3rdalgoservice.tool.run;

import android.os.SystemProperties;
import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.datastruct.VRequest;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSize;
import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;

/** Runs one request on a client, as the service does. close() frees the images; other results stay valid. */
public final class RequestRunner implements AutoCloseable {
    /** Timeout of a synchronous request in the native library, and of a full-async request in this class. */
    public static final int CALLBACK_SECONDS = 10;

    private final RequestFile mRequest;
    private final ServiceClient mClient;
    private final Stopwatch mStopwatch;
    private final boolean mKeepsLookups;
    private final CallbackInbox mInbox;
    private final List<RecordedComposition> mCompositions = new ArrayList<>();
    private final List<ImageBuffer> mInputs = new ArrayList<>();
    private final List<ImageBuffer> mOutputs = new ArrayList<>();
    private final List<ImageLayout> mOutputsBefore = new ArrayList<>();
    private final List<ImageLayout> mOutputsAfter = new ArrayList<>();
    private final List<Map<String, Object>> mPut = new ArrayList<>();
    private final List<String> mProblems = new ArrayList<>();
    private long mWaitStart;
    private long mWaitEnd;

    /**
     * The results of a request.
     *
     * @param inputs        the inputs as passed to the library, with their sizes
     * @param outputsBefore the outputs' descriptions before the request
     * @param outputsAfter  the outputs' descriptions after the request
     * @param put           the values that the native side wrote into each composition, by key
     * @param callbacks     the values that each callback passed to Java
     * @param problems      calls into the native library that returned an error
     * @param waitStart     when the request was submitted, by System.nanoTime()
     * @param waitEnd       when the wait for its result ended, by System.nanoTime()
     */
    public record Ran(List<ImagePlan> inputs, List<ImageLayout> outputsBefore, List<ImageLayout> outputsAfter,
            List<Map<String, Object>> put, List<Map<String, Object>> callbacks, List<String> problems,
            long waitStart, long waitEnd) {
        /** The results of a request that did not run. */
        public static final Ran NONE = unknown(List.of());

        /** The results of a request that ran in another process. Only its inputs are known. */
        public static Ran unknown(List<ImagePlan> inputs) {
            return new Ran(inputs, List.of(), List.of(), List.of(), List.of(), List.of(), 0, 0);
        }
    }

    /** With `keepsLookups`, each look-up of a tag becomes an event. */
    public RequestRunner(
            RequestFile request, ServiceClient client, Stopwatch stopwatch, boolean keepsLookups) {
        mRequest = request;
        mClient = client;
        mStopwatch = stopwatch;
        mKeepsLookups = keepsLookups;
        mInbox = new CallbackInbox(client.clientId());
    }

    /**
     * Creates the call's arguments. `frames` contains the frames made from the photo; it is empty if no input
     * needs them.
     */
    public void make(List<SynthesisedFrame> frames) throws ErrnoException, MistakeException {
        mRequest.properties().forEach(SystemProperties::set);
        mCompositions.addAll(RequestImages.compositions(mRequest));
        mStopwatch.mark("images mapped");
        FrameSize size = FrameSize.of(mRequest, frames);
        for (ImagePlan plan : mRequest.inputs()) {
            Progress.show("filling inputs", mInputs.size(), mRequest.inputs().size());
            mInputs.add(RequestImages.input(plan, frames, size));
        }
        RequestImages.addOutputs(mRequest, size, mOutputs);
    }

    /** Runs the request and waits for its result, CALLBACK_SECONDS at most. */
    public void process() throws IOException {
        Progress.show("processing " + mInputs.size() + " inputs");
        VRequest request = new VRequest(mRequest.id(), mRequest.type());
        List<VImageIPC> outputs = RequestImages.descriptors(mOutputs);
        outputs.forEach(image -> mOutputsBefore.add(ImageLayout.of(image)));
        try (RequestCall call = new RequestCall(mClient, mRequest, request,
                RequestImages.descriptors(mInputs), outputs, mCompositions)) {
            recordLookups();
            List<Map<String, Object>> before = snapshots();
            mStopwatch.mark(Stopwatch.Mark.PROCESS_IMAGE);
            mWaitStart = System.nanoTime();
            check("processImage", mStopwatch.time("process", call::process));
            if (mRequest.fullAsync()) {
                awaitResult(call, before);
            } else {
                mWaitEnd = System.nanoTime();
            }
            mStopwatch.mark("events read");
            outputs.forEach(image -> mOutputsAfter.add(ImageLayout.of(image)));
            addChanges(before);
        }
    }

    // Called only after RequestRecorder has read all tags, so that its reads don't become events.
    private void recordLookups() throws IOException {
        EventLog events = mKeepsLookups ? EventLog.ofEnvironment() : null;
        for (int i = 0; i < mCompositions.size(); ++i) {
            mCompositions.get(i).record(events, i);
        }
    }

    private void awaitResult(RequestCall call, List<Map<String, Object>> before) {
        Long nativeReq = mStopwatch.time("wait", () -> mInbox.awaitDone(id -> true, CALLBACK_SECONDS));
        mWaitEnd = System.nanoTime();
        if (nativeReq != null) {
            before.get(0).put("nativeRequestAddr", nativeReq);
            check("processImageUpdateResult", mStopwatch.time("update result", () -> call.update(nativeReq)));
        }
    }

    private void check(String call, int status) {
        if (status != 0) {
            mProblems.add(call + " returned " + status);
        }
    }

    private List<Map<String, Object>> snapshots() {
        return new ArrayList<>(mCompositions.stream().map(CaptureResultComposition::snapshot).toList());
    }

    // Compares by identity, so that putting an equal value again counts as a change.
    private void addChanges(List<Map<String, Object>> before) {
        for (int i = 0; i < mCompositions.size(); ++i) {
            Map<String, Object> old = before.get(i);
            Map<String, Object> changed = new LinkedHashMap<>();
            mCompositions.get(i).snapshot().forEach((key, value) -> {
                if (old.get(key) != value) {
                    changed.put(key, Objects.requireNonNullElse(value, "null"));
                }
            });
            mPut.add(changed);
        }
    }

    /** The input images, valid until close(). */
    public List<ImageBuffer> inputs() {
        return mInputs;
    }

    public List<ImageBuffer> outputs() {
        return mOutputs;
    }

    public Ran ran() {
        return new Ran(mInputs.stream().map(ImageBuffer::plan).toList(), mOutputsBefore, mOutputsAfter, mPut,
                mInbox.reports(), mProblems, mWaitStart, mWaitEnd);
    }

    @Override
    public void close() {
        mInbox.close();
        mInputs.forEach(ImageBuffer::close);
        mOutputs.forEach(ImageBuffer::close);
    }
}
