package com.orlu.orlu3rdalgoservice.tool.explain;

import android.hardware.camera2.impl.CameraMetadataNative;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;

import java.util.function.Consumer;

/** A composition that reports which of its keys are read. */
final class TrialComposition extends CaptureResultComposition {
    private final Consumer<String> mListener;

    TrialComposition(CameraMetadataNative captureResult, Consumer<String> listener) {
        super(captureResult);
        mListener = listener;
    }

    @Override
    public Object getMetadata(String key) {
        mListener.accept(key);
        return super.getMetadata(key);
    }
}
