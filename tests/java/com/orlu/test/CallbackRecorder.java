package com.orlu.test;

import com.orlu.orlu3rdalgoservice.binderserver.CallbackListener;
import com.orlu.orlu3rdalgoservice.binderserver.RequestProcessor;

import java.util.Arrays;
import java.util.Map;
import java.util.TreeMap;

/** Records what the native side reports while it listens. */
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

    /** One line for each report so far: client, context, request, and the map's entries with their types. */
    public synchronized String reports() {
        return mReports.toString();
    }

    /** Sets whether further reports are answered by an exception. */
    public synchronized void setThrows(boolean isThrowing) {
        mThrows = isThrowing;
    }
}
