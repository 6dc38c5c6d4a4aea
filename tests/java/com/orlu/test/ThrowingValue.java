package com.orlu.test;

/** A metadata value whose toString() throws. */
public final class ThrowingValue {
    private final String mWhat;

    /** Selects what toString() throws: an "exception", or the error for exhausted "memory" or "stack". */
    public ThrowingValue(String what) {
        mWhat = what;
    }

    @Override
    public String toString() {
        return switch (mWhat) {
            case "memory" -> String.valueOf(new long[Integer.MAX_VALUE]);
            case "stack" -> mWhat + this;
            default -> throw new IllegalStateException("thrown instead of a text");
        };
    }
}
