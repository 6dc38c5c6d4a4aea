package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.model.Call;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.run.RequestRunner.Ran;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The callbacks of one request, and the outcome of each. */
public final class Callbacks {
    private static final double NANOSECONDS_PER_SECOND = 1e9;

    private final boolean mIsFullAsync;
    private final long mWaitStart;
    private final long mWaitEnd;
    private final Call mProcess;
    private final List<Call> mCallbacks;

    public Callbacks(RecordedEvents events, boolean isFullAsync, Ran ran) {
        mIsFullAsync = isFullAsync;
        mWaitStart = ran.waitStart();
        mWaitEnd = ran.waitEnd();
        mProcess = new Handover(events).process();
        mCallbacks = events.calls("callback");
    }

    /** Returns whether the request was submitted and no valid callback finished it. */
    public boolean isMissing() {
        return mProcess != null && mCallbacks.stream().noneMatch(callback -> isEndInTime(callback.begin()));
    }

    /** Returns whether the request's callback arrived, even if it was ignored. */
    public boolean hasEnd() {
        return mCallbacks.stream().anyMatch(callback -> isEnd(callback.begin()));
    }

    /** Describes the ignored callbacks: their number, and each reason once; "" for none. */
    String ignored() {
        Map<String, Integer> counts = new LinkedHashMap<>();
        for (Call callback : mCallbacks) {
            String reason = ignored(callback);
            if (!reason.isEmpty()) {
                counts.merge(reason, 1, Integer::sum);
            }
        }
        if (counts.isEmpty()) {
            return "";
        }
        List<String> reasons = new ArrayList<>();
        counts.forEach((reason, count) -> reasons.add(reason + (count == 1 ? "" : " (" + count + " times)")));
        int all = counts.values().stream().mapToInt(Integer::intValue).sum();
        return all + (all == 1 ? " callback" : " callbacks") + " ignored: " + String.join(", ", reasons);
    }

    private boolean isEnd(Event callback) {
        return callback.isShot() && isOfRequest(callback);
    }

    private boolean isEndInTime(Event callback) {
        return isEnd(callback) && !isLate(callback) && !isUnreachable(callback);
    }

    private boolean isLate(Event callback) {
        return callback.time() > mWaitEnd;
    }

    // The native side wakes a waiting request from any thread, but calls Java only from threads attached to
    // the VM.
    private boolean isUnreachable(Event callback) {
        boolean callsJava = callback.isLightStream() || mIsFullAsync;
        return callsJava && callback.has("attached") && !callback.flag("attached");
    }

    private boolean isOfRequest(Event callback) {
        return mProcess != null && callback.number("nativeReq") == mProcess.begin().number("nativeReq");
    }

    // Returns why a callback was ignored; "" if it was not.
    private String ignored(Call call) {
        Event callback = call.begin();
        if (!callback.has("name")) {
            return "no name in its " + callback.number("size") + " bytes";
        }
        if (!callback.isShot() && !callback.isLightStream()) {
            return "unknown name \"" + callback.text("name") + "\"";
        }
        if (callback.isShot() && !isOfRequest(callback)) {
            return "it names the native request " + callback.text("nativeReq") + (mProcess == null
                    ? ", but no request was submitted" : " instead of " + mProcess.begin().text("nativeReq"));
        }
        if (isUnreachable(callback)) {
            return "its thread " + callback.text("tid") + " \"" + callback.text("thread")
                    + "\" is not attached to the VM";
        }
        // A late callback matters only if no valid callback finished the request; otherwise it is redundant.
        if (callback.isShot() && isLate(callback) && isMissing()) {
            return "it arrived after %.1f s".formatted(
                    (callback.time() - mWaitStart) / NANOSECONDS_PER_SECOND);
        }
        return "";
    }
}
