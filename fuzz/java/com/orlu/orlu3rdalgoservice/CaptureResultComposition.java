package com.orlu.orlu3rdalgoservice;

import android.hardware.camera2.CaptureResult;
import android.hardware.camera2.impl.CameraMetadataNative;
import java.util.HashMap;
import java.util.Map;
import java.util.function.Supplier;

/** The service's class of this name, but it can be made to throw. Stands before it in the class path. */
public final class CaptureResultComposition {
    private CaptureResult mCaptureResult;

    private final Map<String, Object> mMetadata = new HashMap<>();
    private Supplier<CaptureResult> mSource;
    private boolean mThrowsOnGet;
    private boolean mThrowsOnPut;

    public CaptureResultComposition() {
        this(new CameraMetadataNative());
    }

    public CaptureResultComposition(CameraMetadataNative source) {
        mSource = () -> new CaptureResult(source);
    }

    /** Where the capture result comes from; the supplier may throw or answer null. */
    public void assembleFrom(Supplier<CaptureResult> source) {
        mSource = source;
    }

    public void throwOn(boolean get, boolean put) {
        mThrowsOnGet = get;
        mThrowsOnPut = put;
    }

    public CaptureResult captureResult() {
        return mCaptureResult;
    }

    public Object getMetadata(String key) {
        if (mThrowsOnGet) {
            throw new IllegalStateException(key);
        }
        return mMetadata.get(key);
    }

    public void putMetadata(String key, Object value) {
        if (mThrowsOnPut) {
            throw new OutOfMemoryError(key);
        }
        mMetadata.put(key, value);
    }

    public CaptureResult assembleResultComposition() {
        return mSource.get();
    }
}
