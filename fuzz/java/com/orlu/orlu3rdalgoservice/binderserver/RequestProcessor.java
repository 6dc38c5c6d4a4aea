package com.orlu.orlu3rdalgoservice.binderserver;

import java.util.HashMap;
import java.util.concurrent.ConcurrentLinkedQueue;
import java.util.concurrent.atomic.AtomicInteger;

/** The service's class of this name, but it can be made to throw. Stands before it in the class path. */
public final class RequestProcessor {
    private static final AtomicInteger ANNOUNCED = new AtomicInteger();
    private static final ConcurrentLinkedQueue<Long> DONE = new ConcurrentLinkedQueue<>();
    private static volatile boolean sThrows;

    private RequestProcessor() {
    }

    public static void throwFromNow(boolean doesThrow) {
        sThrows = doesThrow;
    }

    /** How many requests were announced as done, since the process began. */
    public static int announced() {
        return ANNOUNCED.get();
    }

    /** An announced request that nobody took yet; -1 when there is none. */
    public static long takeDone() {
        Long address = DONE.poll();
        return address == null ? -1 : address;
    }

    public static void callbackFromNative(
            int unused, long clientId, int algoContextIndex, long requestId, HashMap<String, Object> values) {
        if (values != null && values.get("nativeRequestAddr") instanceof Long address) {
            ANNOUNCED.incrementAndGet();
            DONE.add(address);
        }
        if (sThrows) {
            throw new IllegalStateException("callback");
        }
    }
}
