package com.orlu.fuzz;

import android.hardware.camera2.CaptureResult;
import android.hardware.camera2.impl.CameraMetadataNative;
import com.orlu.orlu3rdalgoservice.CaptureResultComposition;

/** A composition whose methods throw, or answer a capture result that does. */
final class HostileComposition extends CaptureResultComposition {
    private final HostileValues mValues;
    private final CameraMetadataNative mSource;
    private final int mAssembly;
    private boolean mThrowsOnGet;
    private boolean mThrowsOnPut;

    HostileComposition(CameraMetadataNative source, HostileValues values) {
        super(source);
        mValues = values;
        mSource = source;
        mAssembly = values.below(20);
    }

    void throwOn(boolean get, boolean put) {
        mThrowsOnGet = get;
        mThrowsOnPut = put;
    }

    @Override
    public Object getMetadata(String key) {
        if (mThrowsOnGet) {
            throw new IllegalStateException(key);
        }
        return super.getMetadata(key);
    }

    @Override
    public void putMetadata(String key, Object value) {
        if (mThrowsOnPut) {
            throw new OutOfMemoryError(key);
        }
        super.putMetadata(key, value);
    }

    @Override
    public CaptureResult assembleResultComposition() {
        return switch (mAssembly) {
            case 0 -> new Unruly();
            case 1 -> throw new IllegalStateException("assemble");
            case 2 -> mValues.chance(50) ? null : new CaptureResult(null);
            default -> super.assembleResultComposition();
        };
    }

    /** A capture result that throws, or answers values of any class. */
    private final class Unruly extends CaptureResult {
        Unruly() {
            super(mSource);
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
}
