package com.orlu.orlu3rdalgoservice.binderserver;

import java.util.Map;

/** Receives the native side's callbacks, on the thread on which the algorithm library calls back. */
@FunctionalInterface
public interface CallbackListener {
    /** `values` contains "nativeRequestAddr" for a finished request, or "eventType" for a light stream. */
    void onCallback(long clientId, int algoContextIndex, long requestId, Map<String, Object> values);
}
