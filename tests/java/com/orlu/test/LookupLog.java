package com.orlu.test;

import android.hardware.camera2.impl.LookupListener;

/** Stores the last look-up as text: "TAG: Long of Integer, refused" if an Integer was read as a Long. */
public final class LookupLog implements LookupListener {
    private String mText = "";

    @Override
    public void onLookup(String tag, Class<?> asked, Object held, RuntimeException thrown) {
        mText = tag + ": " + asked.getSimpleName() + " of "
                + (held == null ? "nothing" : held.getClass().getSimpleName())
                + (thrown == null ? "" : ", refused");
    }

    @Override
    public String toString() {
        return mText;
    }
}
