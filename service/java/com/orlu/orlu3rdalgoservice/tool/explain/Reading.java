package com.orlu.orlu3rdalgoservice.tool.explain;

/**
 * One tag of one frame, and the result of reading it.
 *
 * @param source "composition" or "captureResult"
 * @param asked  the requested class; "" if unknown
 * @param held   the class of the value; "" if absent
 * @param value  the value as in a request file; "" if absent
 */
public record Reading(
        int frame, String tag, String source, Outcome outcome, String asked, String held, String value) {
    /** The outcome of reading the tag. */
    public enum Outcome {
        FOUND,
        ABSENT,
        WRONG_TYPE,
        /** The capture result rejects the tag, because no table declares it. */
        UNKNOWN,
        /** The tag was not looked up. */
        NEVER_READ
    }

    public boolean isInComposition() {
        return source.equals("composition");
    }

    boolean is(Outcome other) {
        return outcome == other;
    }

    /** Returns the reading as text, to be printed after the frame's number. */
    public String text() {
        String place = isInComposition() ? "composition     " : "capture result  ";
        return switch (outcome) {
            case FOUND, NEVER_READ -> place + value;
            case ABSENT -> "absent, so the default applies";
            case WRONG_TYPE -> place + held + " " + value + " instead of " + asked;
            case UNKNOWN -> "in no table, so the default applies";
        };
    }
}
