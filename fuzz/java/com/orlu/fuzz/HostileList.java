package com.orlu.fuzz;

import java.util.AbstractList;
import java.util.ArrayList;
import java.util.List;

/** A list that tells a size of its own, changes it, or throws. */
final class HostileList extends AbstractList<Object> {
    enum Mood { HONEST, WRONG_SIZE, SHRINKING, THROWING_SIZE, THROWING_GET }

    private final List<Object> mElements = new ArrayList<>();
    private final Mood mMood;
    private final int mToldSize;

    HostileList(List<?> elements, Mood mood, int toldSize) {
        mElements.addAll(elements);
        mMood = mood;
        mToldSize = toldSize;
    }

    static HostileList ofAnything(HostileValues values) {
        List<Object> elements = new ArrayList<>();
        for (int i = values.below(4); i > 0; i--) {
            elements.add(values.text());
        }
        return new HostileList(elements, values.pick(List.of(Mood.values())), values.anInt());
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
