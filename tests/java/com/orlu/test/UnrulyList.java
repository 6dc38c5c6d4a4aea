package com.orlu.test;

import java.util.AbstractList;

/** A list of nulls that reports any size, even a negative one. Its size() and get() can be made to throw. */
public final class UnrulyList extends AbstractList<Object> {
    private final int mSize;
    private final boolean mSizeThrows;
    private final boolean mGetThrows;

    /** Makes a list that reports {@code size}, or whose size() or get() always throws. */
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
