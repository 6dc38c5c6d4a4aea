package com.orlu.orlu3rdalgoservice.tool.run;

import com.orlu.orlu3rdalgoservice.binderserver.CallbackListener;
import com.orlu.orlu3rdalgoservice.binderserver.RequestProcessor;

import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import java.util.concurrent.TimeUnit;
import java.util.function.LongPredicate;

/** Collects the native side's reports for one client until close(). */
final class CallbackInbox implements CallbackListener, AutoCloseable {
    private static final String REQUEST_ADDRESS = "nativeRequestAddr";

    private final long mClientId;
    private final List<Report> mReports = new ArrayList<>();

    private record Report(long requestId, Map<String, Object> values) {
    }

    CallbackInbox(long clientId) {
        mClientId = clientId;
        RequestProcessor.addListener(this);
    }

    @Override
    public synchronized void onCallback(
            long clientId, int algoContextIndex, long requestId, Map<String, Object> values) {
        if (clientId == mClientId) {
            mReports.add(new Report(requestId, new TreeMap<>(values)));
            notifyAll();
        }
    }

    synchronized List<Map<String, Object>> reports() {
        return mReports.stream().map(Report::values).toList();
    }

    /** Returns the native addresses of finished requests that match `ids`, in the order of the reports. */
    synchronized List<Long> done(LongPredicate ids) {
        return mReports.stream().filter(report -> ids.test(report.requestId()))
                .map(report -> report.values().get(REQUEST_ADDRESS))
                .filter(Long.class::isInstance).map(Long.class::cast).toList();
    }

    /**
     * Waits until a request that matches `ids` has finished. Returns the request's native address; null after
     * a timeout or an interrupt.
     */
    synchronized Long awaitDone(LongPredicate ids, long seconds) {
        long end = System.nanoTime() + TimeUnit.SECONDS.toNanos(seconds);
        try {
            while (done(ids).isEmpty() && System.nanoTime() < end) {
                TimeUnit.NANOSECONDS.timedWait(this, end - System.nanoTime());
            }
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
        }
        return done(ids).stream().findFirst().orElse(null);
    }

    @Override
    public void close() {
        RequestProcessor.removeListener(this);
    }
}
