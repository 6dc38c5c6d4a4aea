package com.orlu.fuzz;

import android.hardware.camera2.CaptureResult;
import android.hardware.camera2.impl.CameraMetadataNative;
import com.orlu.orlu3rdalgoservice.CaptureResultComposition;

/** A composition whose methods may throw, or return a hostile capture result. */
final class HostileComposition extends CaptureResultComposition {
    private final HostileValues mValues;
    private final CameraMetadataNative mSource;
    private final int mAssembly;
    private int mThrows; // bit 0: getMetadata throws, bit 1: putMetadata throws

    HostileComposition(CameraMetadataNative source, HostileValues values) {
        super(source);
        mValues = values;
        mSource = source;
        mAssembly = values.below(20);
    }

    /** Makes getMetadata, putMetadata, both or neither throw from now on. */
    void throwSometimes() {
        mThrows = mValues.below(4);
    }

    @Override
    public Object getMetadata(String key) {
        throwIf((mThrows & 1) != 0, key);
        return super.getMetadata(key);
    }

    @Override
    public void putMetadata(String key, Object value) {
        throwIf((mThrows & 2) != 0, key);
        super.putMetadata(key, value);
    }

    private static void throwIf(boolean isThrowing, String key) {
        if (isThrowing) {
            throw new OutOfMemoryError(key);
        }
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

    /** A capture result that sometimes throws or returns values of any class. */
    private final class Unruly extends CaptureResult {
        Unruly() {
            super(mSource);
        }

        @Override
        @SuppressWarnings("unchecked")
        public <T> T get(Key<T> key) {
            throwIf(mValues.chance(20), key.getName());
            return mValues.chance(50) ? (T) mValues.anything() : super.get(key);
        }
    }
}
