package com.orlu.test;

import java.util.AbstractList;

/** A list that claims any size, and throws on request. */
public final class UnrulyList extends AbstractList<Object> {
    private final int mSize;
    private final boolean mSizeThrows;
    private final boolean mGetThrows;

    /** Without {@code getThrows} every element is null. */
    public UnrulyList(int size, boolean sizeThrows, boolean getThrows) {
        mSize = size;
        mSizeThrows = sizeThrows;
        mGetThrows = getThrows;
    }

    @Override
    public int size() {
        if (mSizeThrows) {
            throw new IllegalStateException("thrown by size()");
        }
        return mSize;
    }

    @Override
    public Object get(int index) {
        if (mGetThrows) {
            throw new IllegalStateException("thrown by get(" + index + ")");
        }
        return null;
    }
}
