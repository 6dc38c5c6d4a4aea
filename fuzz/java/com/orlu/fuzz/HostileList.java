package com.orlu.fuzz;

import java.util.AbstractList;
import java.util.ArrayList;
import java.util.List;

/** A list that may report a wrong size, change its size, or throw. */
final class HostileList extends AbstractList<Object> {
    private enum Mood { HONEST, WRONG_SIZE, SHRINKING, THROWING_SIZE, THROWING_GET }

    private final List<Object> mElements;
    private final Mood mMood;
    private final int mToldSize;

    HostileList(List<?> elements, HostileValues values) {
        mElements = new ArrayList<>(elements);
        mMood = values.pick(List.of(Mood.values()));
        mToldSize = values.chance(50) ? values.anInt() : values.below(400);
    }

    @Override
    public int size() {
        if (mMood == Mood.THROWING_SIZE) {
            throw new UnsupportedOperationException("size");
        }
        return mMood == Mood.WRONG_SIZE ? mToldSize : mElements.size();
    }

    @Override
    public Object get(int index) {
        if (mMood == Mood.THROWING_GET && index % 2 == 0) {
            throw new StackOverflowError();
        }
        if (mMood == Mood.SHRINKING && mElements.size() > 1) {
            mElements.remove(mElements.size() - 1);
        }
        return mElements.get(index);
    }
}
