package com.orlu.fuzz;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.binderserver.CallbackListener;
import com.orlu.orlu3rdalgoservice.binderserver.RequestProcessor;
import java.util.List;
import java.util.Map;
import java.util.Queue;
import java.util.Set;
import java.util.concurrent.ConcurrentHashMap;
import java.util.concurrent.ConcurrentLinkedQueue;

/** Queues the requests of callbacks for soak tests. The constructor starts listening; stop() ends it. */
public final class Callbacks implements CallbackListener {
    private static final Queue<long[]> DONE = new ConcurrentLinkedQueue<>();
    private static final Set<Long> THROWING = ConcurrentHashMap.newKeySet();
    private final boolean mThrows;

    public Callbacks(boolean isThrowing) {
        mThrows = isThrowing;
        RequestProcessor.addListener(this);
    }

    public void stop() {
        RequestProcessor.removeListener(this);
    }

    @Override
    public void onCallback(long clientId, int algoContextIndex, long requestId, Map<String, Object> values) {
        if (mThrows || THROWING.remove(requestId)) {
            throw new IllegalStateException("callback");
        }
        if (values.get("nativeRequestAddr") instanceof Long address) {
            DONE.add(new long[] {requestId, address});
        }
    }

    /** Makes the next callback for this request throw. */
    public static void throwFor(long requestId) {
        THROWING.add(requestId);
    }

    /** Removes a queued request and returns its id and address; null if there is none. */
    public static long[] takeDone() {
        return DONE.poll();
    }

    /** Returns the compositions to pass to the service to finish the request at this address. */
    public static List<CaptureResultComposition> toEnd(long address) {
        CaptureResultComposition composition = new CaptureResultComposition();
        composition.putMetadata("nativeRequestAddr", address);
        return List.of(composition);
    }
}
