package com.orlu.orlu3rdalgoservice.tool.text;

/** Reports an invalid input. The message is one line with place, field and problem. */
public final class MistakeException extends Exception {
    private static final long serialVersionUID = 1;

    private final transient Mistake mMistake;

    /**
     * Reports a problem without a line number. The field is empty if the problem concerns the whole file.
     */
    public MistakeException(String file, String field, String problem) {
        this(new Mistake(file, 0, 0, field, problem, false));
    }

    public MistakeException(Mistake mistake) {
        super(mistake.text(""));
        mMistake = mistake;
    }

    public Mistake mistake() {
        return mMistake;
    }
}
