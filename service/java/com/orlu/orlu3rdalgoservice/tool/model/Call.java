package com.orlu.orlu3rdalgoservice.tool.model;

/** A call between the native and the algorithm library: its begin event and, if it ended, its end event. */
public final class Call {
    private final Event mBegin;
    private Event mEnd;

    Call(Event begin) {
        mBegin = begin;
    }

    void end(Event end) {
        mEnd = end;
    }

    public String operation() {
        return mBegin.operation();
    }

    public Event begin() {
        return mBegin;
    }

    /** The end event; null if the call has not ended, because it blocks or killed the process. */
    public Event end() {
        return mEnd;
    }

    public boolean hasThrown() {
        return mEnd != null && mEnd.has("thrown");
    }

    public boolean returned(long result) {
        return mEnd != null && mEnd.has("result") && mEnd.number("result") == result;
    }

    /** The outcome, as text that follows the operation's name. */
    public String outcome() {
        if (mEnd == null) {
            return "has not returned";
        }
        if (hasThrown()) {
            String what = mEnd.text("what");
            return "threw " + mEnd.text("thrown") + (what.isEmpty() ? "" : ": " + what);
        }
        return mEnd.has("result") ? "returned " + mEnd.text("result") : "returned";
    }
}
