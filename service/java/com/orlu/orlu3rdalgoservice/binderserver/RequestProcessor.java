package com.orlu.orlu3rdalgoservice.binderserver;

import java.util.HashMap;
import java.util.List;
import java.util.concurrent.CopyOnWriteArrayList;

/** Receives callbacks from the native side, which looks up this class and callbackFromNative() by name. */
public final class RequestProcessor {
    private static final List<CallbackListener> LISTENERS = new CopyOnWriteArrayList<>();

    private RequestProcessor() {
    }

    /** Adds a listener for the callbacks of all clients. */
    public static void addListener(CallbackListener listener) {
        LISTENERS.add(listener);
    }

    /** Removes a listener. */
    public static void removeListener(CallbackListener listener) {
        LISTENERS.remove(listener);
    }

    /** Called by the native side. The first argument is 0 for every kind of callback. */
    public static void callbackFromNative(
            int unused, long clientId, int algoContextIndex, long requestId, HashMap<String, Object> values) {
        for (CallbackListener listener : LISTENERS) {
            listener.onCallback(clientId, algoContextIndex, requestId, values);
        }
    }
}
