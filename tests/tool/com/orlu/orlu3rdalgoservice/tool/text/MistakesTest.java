package com.orlu.orlu3rdalgoservice.tool.text;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertThrows;
import static org.junit.Assert.assertTrue;

import org.junit.Test;

/** Tests Mistakes with more mistakes than it keeps or prints. */
public final class MistakesTest {
    private static final int MOST_KEPT = 1000;

    private final Mistakes mMistakes = new Mistakes("file");

    private void warn(int line) {
        mMistakes.add(mMistakes.at(line, 1, "", "odd", true));
    }

    @Test
    public void countsAnErrorAfterAnyNumberOfWarnings() {
        for (int i = 0; i < MOST_KEPT; ++i) {
            warn(i);
        }
        warn(0);
        assertFalse("a repeated warning does not count as dropped", mMistakes.areMore());
        warn(MOST_KEPT);
        assertTrue("a warning above the limit is dropped", mMistakes.areMore());
        mMistakes.add(MOST_KEPT, 1, "", "wrong");
        assertEquals(1, mMistakes.errors());
        assertEquals(MOST_KEPT, mMistakes.warnings());
        MistakeException first = assertThrows(MistakeException.class, mMistakes::throwFirst);
        assertEquals("wrong", first.mistake().problem());
        assertTrue("the error is printed", mMistakes.lines().contains("file:1000:1: error: wrong"));
    }
}
