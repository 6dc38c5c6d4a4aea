package com.orlu.orlu3rdalgoservice;

import android.hardware.camera2.CaptureResult;
import android.hardware.camera2.impl.CameraMetadataNative;

import java.util.LinkedHashMap;
import java.util.Map;

/**
 * One frame's metadata: the camera's capture result, overlaid with the service's own values. The native side
 * looks up the service's values first, and adds its results to them. The objects that entry points take as
 * `param` are also compositions.
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

    /** Returns the value that is stored under a key; null if there is none. */
    public Object getMetadata(String key) {
        return mMetadata.get(key);
    }

    /** Stores a value under a key. Replaces the key's earlier value. */
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

    /** Returns a copy of all keys and values, in the order in which the keys were first stored. */
    public Map<String, Object> snapshot() {
        return new LinkedHashMap<>(mMetadata);
    }
}
