package com.orlu.orlu3rdalgoservice.tool.request;

/** A request file that can't be taken. The message is one line: file, field, what is wrong. */
public final class RequestFileException extends Exception {
    private static final long serialVersionUID = 1;

    /** The field may be empty, when it is about the whole file. */
    public RequestFileException(String file, String field, String problem) {
        super(oneLine(file + ": " + (field.isEmpty() ? "" : field + ": ") + problem));
    }

    private static String oneLine(String text) {
        return text.replaceAll("\\p{Cntrl}", "?");
    }
}
