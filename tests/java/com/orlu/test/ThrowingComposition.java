package com.orlu.test;

import android.hardware.camera2.CaptureResult;
import com.orlu.orlu3rdalgoservice.CaptureResultComposition;

/** A composition that throws from every method that the native side calls. */
public final class ThrowingComposition extends CaptureResultComposition {
    @Override
    public Object getMetadata(String key) {
        throw new IllegalStateException("thrown for " + key);
    }

    @Override
    public void putMetadata(String key, Object value) {
        throw new IllegalStateException("thrown for " + key);
    }

    @Override
    public CaptureResult assembleResultComposition() {
        throw new IllegalStateException("thrown instead of a result");
    }
}
