package com.orlu.orlu3rdalgoservice.tool.explain;

import android.hardware.camera2.impl.CameraMetadataNative;
import android.os.SystemProperties;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.Orlu3rdAlgoService;
import com.orlu.orlu3rdalgoservice.binderserver.CallbackListener;
import com.orlu.orlu3rdalgoservice.binderserver.RequestProcessor;
import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.datastruct.VRequest;
import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * A request for trials. All trials use one client and the same images; the pixels of these images are never
 * read. After each trial, its changes are undone.
 */
final class TrialRequest implements AutoCloseable {
    private static final String NATIVE_REQUEST = "nativeRequestAddr";

    record Frame(CameraMetadataNative captureResult, Map<String, Object> composition) {
    }

    /** A change of one tag of a frame, in its composition or capture result. A null value removes the tag. */
    record Change(int frame, boolean inComposition, String tag, Object value) {
    }

    /**
     * The look-ups of one tag in one frame. `composition` is true if the tag was looked up in the
     * composition. `captureResult` is the class requested from the capture result; null if the tag was not
     * looked up there.
     */
    record Asked(boolean composition, Class<?> captureResult) {
    }

    /** The look-ups of each frame, by tag. */
    private final List<Map<String, Asked>> mAsked = new ArrayList<>();

    private final Orlu3rdAlgoService mService = new Orlu3rdAlgoService();
    private final CaptureResultComposition mParam = new CaptureResultComposition();
    private final long mClient;
    private final VRequest mRequest;
    private final List<Frame> mFrames = new ArrayList<>();
    private final List<VImageIPC> mInputs;
    private final List<VImageIPC> mOutputs;
    private final CallbackListener mListener = (client, context, request, values) -> heard(values);

    private Object mDone;

    /** Creates a client for the request. The caller owns the images. */
    TrialRequest(RequestFile file, List<VImageIPC> inputs, List<VImageIPC> outputs) {
        mInputs = inputs;
        mOutputs = outputs;
        file.properties().forEach(SystemProperties::set);
        for (FramePlan frame : file.frames().frames()) {
            mFrames.add(new Frame(frame.captureResult(), frame.composition()));
            mAsked.add(new LinkedHashMap<>());
        }
        mRequest = new VRequest(file.id(), file.type());
        mParam.putMetadata("clientId", file.clientId());
        mParam.putMetadata("algoContextIndex", file.algoContextIndex());
        mClient = mService.createNativeClient(mParam);
        mService.algoInit(mClient, mParam);
        RequestProcessor.addListener(mListener);
    }

    List<Frame> frames() {
        return mFrames;
    }

    /** Returns a frame's look-ups since the previous call of this method, by tag. */
    Map<String, Asked> takeAsked(int frame) {
        Map<String, Asked> asked = mAsked.get(frame);
        mAsked.set(frame, new LinkedHashMap<>());
        return asked;
    }

    /**
     * Translates the request with these changes, and returns the record of the translation's writes (see
     * TrialLibrary). If a capture result can't hold a value, throws IllegalArgumentException and translates
     * nothing. Look-ups are recorded only if `recordsLookups` is true, because recording takes time.
     */
    byte[] run(List<Change> changes, boolean recordsLookups) {
        List<Object> before = new ArrayList<>();
        try {
            for (Change change : changes) {
                Object held = held(change);
                set(change, change.value());
                before.add(held);
            }
            return run(recordsLookups);
        } finally {
            for (int i = 0; i < before.size(); ++i) {
                set(changes.get(i), before.get(i));
            }
        }
    }

    private Object held(Change change) {
        Frame frame = mFrames.get(change.frame());
        return change.inComposition() ? frame.composition().get(change.tag())
                : frame.captureResult().get(change.tag());
    }

    private void set(Change change, Object value) {
        Frame frame = mFrames.get(change.frame());
        if (!change.inComposition()) {
            frame.captureResult().set(change.tag(), value);
        } else if (value == null) {
            frame.composition().remove(change.tag());
        } else {
            frame.composition().put(change.tag(), value);
        }
    }

    private byte[] run(boolean recordsLookups) {
        List<CaptureResultComposition> compositions = new ArrayList<>();
        for (int i = 0; i < mFrames.size(); ++i) {
            Map<String, Asked> asked = mAsked.get(i);
            Frame frame = mFrames.get(i);
            compositions.add(recordsLookups ? recording(frame, asked) : plain(frame));
            frame.composition().forEach(compositions.get(i)::putMetadata);
        }
        mDone = null;
        mService.processImage(mClient, mRequest, mInputs, mOutputs, compositions);
        byte[] record = TrialLibrary.takeRecord();
        if (mDone != null) {
            // A full-async request finishes only when its results are fetched.
            compositions.get(0).putMetadata(NATIVE_REQUEST, mDone);
            mService.processImageUpdateResult(mClient, mRequest, mInputs, mOutputs, compositions);
            TrialLibrary.takeRecord();
        }
        return record;
    }

    private static CaptureResultComposition plain(Frame frame) {
        frame.captureResult().setLookupListener(null);
        return new CaptureResultComposition(frame.captureResult());
    }

    private static CaptureResultComposition recording(Frame frame, Map<String, Asked> asked) {
        frame.captureResult().setLookupListener((tag, type, held, thrown) ->
                asked.merge(tag, new Asked(false, type), TrialRequest::both));
        return new TrialComposition(frame.captureResult(),
                key -> asked.merge(key, new Asked(true, null), TrialRequest::both));
    }

    private static Asked both(Asked one, Asked other) {
        return new Asked(one.composition() || other.composition(),
                one.captureResult() != null ? one.captureResult() : other.captureResult());
    }

    private void heard(Map<String, Object> values) {
        if (values.containsKey(NATIVE_REQUEST)) {
            mDone = values.get(NATIVE_REQUEST);
        }
    }

    @Override
    public void close() {
        RequestProcessor.removeListener(mListener);
        mService.algoRelease(mClient, mParam);
        mService.destroyNativeClient(mClient);
    }
}
