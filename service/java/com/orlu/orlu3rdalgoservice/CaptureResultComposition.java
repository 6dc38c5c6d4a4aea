package com.orlu.orlu3rdalgoservice;

import android.hardware.camera2.CaptureResult;
import android.hardware.camera2.impl.CameraMetadataNative;

import java.util.LinkedHashMap;
import java.util.Map;

/**
 * One frame's metadata: what the camera reported, overlaid with the service's own values. The native side
 * looks up the service's values first, and puts its results among them. The entry points' parameter objects
 * are compositions, too.
 */
public class CaptureResultComposition {
    // Read and stored by the native side.
    private CaptureResult mCaptureResult;

    private final CameraMetadataNative mSource;
    private final Map<String, Object> mMetadata = new LinkedHashMap<>();

    /** A composition over empty camera metadata. */
    public CaptureResultComposition() {
        this(new CameraMetadataNative());
    }

    /** A composition over the camera's metadata, which is borrowed, not copied. */
    public CaptureResultComposition(CameraMetadataNative source) {
        mSource = source;
    }

    /** Returns the value put under a key; null if there is none. */
    public Object getMetadata(String key) {
        return mMetadata.get(key);
    }

    /** Puts a value, replacing an earlier one. */
    public void putMetadata(String key, Object value) {
        mMetadata.put(key, value);
    }

    /** Makes a capture result from mSource. The native side calls this once and caches the result. */
    public CaptureResult assembleResultComposition() {
        return new CaptureResult(mSource);
    }

    /** The capture result that the native side cached here; null before the first request. */
    public CaptureResult captureResult() {
        return mCaptureResult;
    }

    /** A copy of all keys and values, in the order they were first put. */
    public Map<String, Object> snapshot() {
        return new LinkedHashMap<>(mMetadata);
    }
}
