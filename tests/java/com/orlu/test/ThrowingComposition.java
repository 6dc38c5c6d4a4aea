package com.orlu.test;

import android.hardware.camera2.CaptureResult;
import com.orlu.orlu3rdalgoservice.CaptureResultComposition;

/** A composition that throws when one key is read or put, or whatever is asked of it. */
public final class ThrowingComposition extends CaptureResultComposition {
    private final String mKey;

    /** Throws for {@code key}; for every key, and instead of a capture result, when that is null. */
    public ThrowingComposition(String key) {
        mKey = key;
    }

    @Override
    public Object getMetadata(String key) {
        check(key);
        return super.getMetadata(key);
    }

    @Override
    public void putMetadata(String key, Object value) {
        check(key);
        super.putMetadata(key, value);
    }

    @Override
    public CaptureResult assembleResultComposition() {
        check(null);
        return super.assembleResultComposition();
    }

    private void check(String key) {
        if (mKey == null || mKey.equals(key)) {
            throw new IllegalStateException("thrown for " + key);
        }
    }
}
