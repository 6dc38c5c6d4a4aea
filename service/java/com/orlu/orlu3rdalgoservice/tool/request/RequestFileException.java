package com.orlu.orlu3rdalgoservice.tool.request;

/** A request file or recording that can't be taken. The message is one line: file, field, what is wrong. */
public final class RequestFileException extends Exception {
    private static final long serialVersionUID = 1;

    private final transient Mistake mMistake;

    /** The field may be empty, when it is about the whole file. */
    public RequestFileException(String file, String field, String problem) {
        this(new Mistake(file, 0, 0, field, problem, false));
    }

    RequestFileException(Mistake mistake) {
        super(mistake.text());
        mMistake = mistake;
    }

    Mistake mistake() {
        return mMistake;
    }
}
