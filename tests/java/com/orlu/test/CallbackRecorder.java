package com.orlu.test;

import com.orlu.orlu3rdalgoservice.binderserver.CallbackListener;
import com.orlu.orlu3rdalgoservice.binderserver.RequestProcessor;

import java.util.Arrays;
import java.util.Map;
import java.util.TreeMap;

/** Records the callbacks of the native side between listen() and stop(). */
public final class CallbackRecorder implements CallbackListener {
    private final StringBuilder mReports = new StringBuilder();
    private boolean mThrows;

    public void listen() {
        RequestProcessor.addListener(this);
    }

    public void stop() {
        RequestProcessor.removeListener(this);
    }

    @Override
    public synchronized void onCallback(
            long clientId, int algoContextIndex, long requestId, Map<String, Object> values) {
        if (mThrows) {
            throw new IllegalStateException("thrown for " + requestId);
        }
        mReports.append(clientId).append(' ').append(algoContextIndex).append(' ').append(requestId);
        new TreeMap<>(values).forEach((key, value) ->
                mReports.append(' ').append(key).append('=').append(value.getClass().getSimpleName()).append(' ')
                        .append(value instanceof int[] ints ? Arrays.toString(ints) : value));
        mReports.append('\n');
    }

    /** Returns a line for each callback: client, context, request, and the map's entries with types. */
    public synchronized String reports() {
        return mReports.toString();
    }

    public synchronized void setThrows(boolean isThrowing) {
        mThrows = isThrowing;
    }
}
