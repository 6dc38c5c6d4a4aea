package com.orlu.orlu3rdalgoservice;

import android.hardware.camera2.CaptureResult;
import android.hardware.camera2.impl.CameraMetadataNative;

import java.util.LinkedHashMap;
import java.util.Map;

/**
 * One frame's metadata: what the camera reported, and over it a map of values of the service's own. The
 * native side asks the map first, and puts its results into it. The entry points' parameter objects are of
 * this class as well.
 */
public class CaptureResultComposition {
    // Read and stored by the native side.
    private CaptureResult mCaptureResult;

    private final CameraMetadataNative mSource;
    private final Map<String, Object> mMetadata = new LinkedHashMap<>();

    /** A composition without a camera's report. */
    public CaptureResultComposition() {
        this(new CameraMetadataNative());
    }

    /** A composition over what the camera reported. The metadata is borrowed, not copied. */
    public CaptureResultComposition(CameraMetadataNative source) {
        mSource = source;
    }

    /** The value put under a key, null when there is none. */
    public Object getMetadata(String key) {
        return mMetadata.get(key);
    }

    /** Puts a value; the last one put under a key stays. */
    public void putMetadata(String key, Object value) {
        mMetadata.put(key, value);
    }

    /** Makes a capture result of the camera's report. The native side calls it once and keeps the result. */
    public CaptureResult assembleResultComposition() {
        return new CaptureResult(mSource);
    }

    /** The capture result that the native side keeps here, null before the first request. */
    public CaptureResult captureResult() {
        return mCaptureResult;
    }

    /** A copy of all keys and values, in the order they were first put. */
    public Map<String, Object> snapshot() {
        return new LinkedHashMap<>(mMetadata);
    }
}
