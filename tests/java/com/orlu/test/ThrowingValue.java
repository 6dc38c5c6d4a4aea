package com.orlu.test;

/** A metadata value whose toString() throws. */
public final class ThrowingValue {
    private final String mWhat;

    /**
     * Makes toString() exhaust the heap if `what` is "memory", exhaust the stack if `what` is "stack", and
     * otherwise throw an exception.
     */
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
