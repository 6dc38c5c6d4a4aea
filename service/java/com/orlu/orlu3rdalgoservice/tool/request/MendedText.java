package com.orlu.orlu3rdalgoservice.tool.request;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** A text in which slips are mended, so that it can be read on; places are those before any mending. */
final class MendedText {
    private static final Pattern LINE_END = Pattern.compile("\r\n?|\n");

    private final List<Integer> mLineStarts = new ArrayList<>(List.of(0));
    private final List<Mend> mMends = new ArrayList<>();
    private String mText;

    /** Instead of the characters of a range stands another text. */
    record Mend(int from, int to, String replacement) {
    }

    /** A place, both numbers from 1. */
    record Position(int line, int column) {
    }

    MendedText(String text) {
        mText = text;
        Matcher end = LINE_END.matcher(text);
        while (end.find()) {
            mLineStarts.add(end.end());
        }
    }

    /** The text as it is by now. */
    String text() {
        return mText;
    }

    /** How often it was mended. */
    int mends() {
        return mMends.size();
    }

    void mend(Mend mend) {
        mText = mText.substring(0, mend.from()) + mend.replacement() + mText.substring(mend.to());
        mMends.add(mend);
    }

    /** Where the character at an offset in the text stands, or would, in the text as it was written. */
    Position position(long offset) {
        int original = (int) offset;
        for (int i = mMends.size() - 1; i >= 0; --i) {
            Mend mend = mMends.get(i);
            int end = mend.from() + mend.replacement().length();
            original = original >= end ? original - end + mend.to() : Math.min(original, mend.from());
        }
        int found = Collections.binarySearch(mLineStarts, original);
        int line = found >= 0 ? found : -found - 2;
        return new Position(line + 1, original - mLineStarts.get(line) + 1);
    }
}
