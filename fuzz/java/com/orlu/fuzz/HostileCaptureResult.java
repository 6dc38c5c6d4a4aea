package com.orlu.fuzz;

import android.hardware.camera2.CaptureResult;
import android.hardware.camera2.impl.CameraMetadataNative;

/** A capture result that throws, or answers values of any class. */
final class HostileCaptureResult extends CaptureResult {
    private final HostileValues mValues;

    HostileCaptureResult(CameraMetadataNative results, HostileValues values) {
        super(results);
        mValues = values;
    }

    @Override
    @SuppressWarnings("unchecked")
    public <T> T get(Key<T> key) {
        if (mValues.chance(20)) {
            throw new IllegalStateException(key.getName());
        }
        return mValues.chance(50) ? (T) mValues.anything() : super.get(key);
    }
}
