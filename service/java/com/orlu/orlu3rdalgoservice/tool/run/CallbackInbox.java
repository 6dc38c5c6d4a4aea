package com.orlu.orlu3rdalgoservice.tool.run;

import com.orlu.orlu3rdalgoservice.binderserver.CallbackListener;
import com.orlu.orlu3rdalgoservice.binderserver.RequestProcessor;

import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;

/** Collects what the native side reports to one client while it is open. */
public final class CallbackInbox implements CallbackListener, AutoCloseable {
    static final String REQUEST_ADDRESS = "nativeRequestAddr";
    private static final long NANOSECONDS_PER_MILLISECOND = 1_000_000;

    private final long mClientId;
    private final List<Map<String, Object>> mReports = new ArrayList<>();

    public CallbackInbox(long clientId) {
        mClientId = clientId;
        RequestProcessor.addListener(this);
    }

    @Override
    public synchronized void onCallback(
            long clientId, int algoContextIndex, long requestId, Map<String, Object> values) {
        if (clientId == mClientId) {
            mReports.add(new TreeMap<>(values));
            notifyAll();
        }
    }

    /** The reports so far. */
    synchronized List<Map<String, Object>> reports() {
        return List.copyOf(mReports);
    }

    /** Waits until a request is reported done. Returns its native id; null after a timeout. */
    public synchronized Long awaitRequest(long milliseconds) {
        long end = System.nanoTime() + milliseconds * NANOSECONDS_PER_MILLISECOND;
        Long done = doneRequest();
        while (done == null && end - System.nanoTime() > 0) {
            try {
                wait(Math.max(1, (end - System.nanoTime()) / NANOSECONDS_PER_MILLISECOND));
            } catch (InterruptedException e) {
                Thread.currentThread().interrupt();
                return null;
            }
            done = doneRequest();
        }
        return done;
    }

    private Long doneRequest() {
        for (Map<String, Object> report : mReports) {
            if (report.get(REQUEST_ADDRESS) instanceof Long address) {
                return address;
            }
        }
        return null;
    }

    @Override
    public void close() {
        RequestProcessor.removeListener(this);
    }
}
