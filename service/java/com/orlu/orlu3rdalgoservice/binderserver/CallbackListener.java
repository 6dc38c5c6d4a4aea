package com.orlu.orlu3rdalgoservice.binderserver;

import java.util.Map;

/** Hears what the native side reports. Called on a thread of the algorithm library. */
@FunctionalInterface
public interface CallbackListener {
    /**
     * One report; the map holds "nativeRequestAddr" for a finished request, "eventType" for a light stream.
     */
    void onCallback(long clientId, int algoContextIndex, long requestId, Map<String, Object> values);
}
