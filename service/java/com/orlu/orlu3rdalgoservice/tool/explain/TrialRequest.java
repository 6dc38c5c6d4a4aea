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
 * A request that is translated repeatedly, on one client and with the same images, whose pixels are never
 * read. Each trial's changes are undone afterwards.
 */
final class TrialRequest implements AutoCloseable {
    private static final String NATIVE_REQUEST = "nativeRequestAddr";

    record Frame(CameraMetadataNative captureResult, Map<String, Object> composition) {
    }

    /** A change of a frame's tag in the composition or the capture result; null removes the tag. */
    record Change(int frame, boolean inComposition, String tag, Object value) {
    }

    /**
     * The look-ups of a tag. `composition` is true for a look-up in the composition; `captureResult` is the
     * class requested from the capture result, null without such a request.
     */
    record Asked(boolean composition, Class<?> captureResult) {
    }

    /** The look-ups in each frame. */
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

    /** Returns the look-ups in a frame since the last call. */
    Map<String, Asked> takeAsked(int frame) {
        Map<String, Asked> asked = mAsked.get(frame);
        mAsked.set(frame, new LinkedHashMap<>());
        return asked;
    }

    /**
     * Translates the request with some values changed, and returns the record of its writes. Throws
     * IllegalArgumentException, without running, if the capture result can't hold a value. Look-ups are
     * recorded only if `recordsLookups` is true, because recording takes time.
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
