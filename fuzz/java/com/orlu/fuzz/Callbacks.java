package com.orlu.fuzz;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.binderserver.CallbackListener;
import com.orlu.orlu3rdalgoservice.binderserver.RequestProcessor;
import java.util.List;
import java.util.Map;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.LinkedBlockingQueue;

/** Hears what the native side reports, from its making on. Soaks take from it what is done. */
public final class Callbacks implements CallbackListener {
    private static final BlockingQueue<Long> DONE = new LinkedBlockingQueue<>();
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
        if (mThrows) {
            throw new IllegalStateException("callback");
        }
        if (values.get("nativeRequestAddr") instanceof Long address) {
            DONE.add(address);
        }
    }

    /** Compositions that end a request which was announced as done and nobody took yet; waits for one. */
    public static List<CaptureResultComposition> takeDone() throws InterruptedException {
        CaptureResultComposition composition = new CaptureResultComposition();
        composition.putMetadata("nativeRequestAddr", DONE.take());
        return List.of(composition);
    }
}
