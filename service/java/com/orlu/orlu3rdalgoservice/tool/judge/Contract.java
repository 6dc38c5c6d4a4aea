package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.judge.Breach.Side;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterTypes;

import java.util.ArrayDeque;
import java.util.ArrayList;
import java.util.Deque;
import java.util.HashMap;
import java.util.HashSet;
import java.util.LinkedHashMap;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;

/**
 * Checks the calls between the service and the algorithm library against their contract
 * (docs/conformance.md), in the order of the events' file. The probe writes the event "begin" before the
 * call, and "end" after the call. So the "begin" of a call that destroys an address precedes the "end" of
 * the call that returns the same address again, even if the calls are on different threads.
 */
public final class Contract {
    /** The offset of the name in the bytes of a callback. */
    private static final int NAME_OFFSET = 20;
    private static final int LIGHT_STREAM_BYTES = 48;
    /**
     * The service waits ten seconds for a synchronous request, and may then destroy the request's block. This
     * limit is a tenth of a second shorter, so that inexact timers cause no breach.
     */
    private static final long WAIT_NANOSECONDS = 9_900_000_000L;
    /** Number of finished requests to remember. Older requests count as unknown. */
    private static final int MOST_FINISHED = 4096;

    private final Map<Long, Event> mOpen = new HashMap<>();
    private final Set<Long> mClients = new HashSet<>();
    private final Set<Long> mBlocks = new HashSet<>();
    // Maps each destroyClient call in progress to its client, which callbacks may still use.
    private final Map<Long, Long> mEnding = new HashMap<>();
    private final Map<Long, Cookie> mCookies = new HashMap<>();
    private final Map<Request, Deque<Pending>> mPending = new HashMap<>();
    private final Set<Request> mFinished = new LinkedHashSet<>();
    private final Map<List<Object>, Breach> mBreaches = new LinkedHashMap<>();

    private record Request(long cookie, long nativeReq) {
    }

    /** The client that a cookie belongs to; `ending` is the destroyClient call in progress for it, or 0. */
    private record Cookie(long client, long ending, boolean isDead) {
    }

    /** A request without a callback so far. */
    private static final class Pending {
        final Event mProcess;
        boolean mIsRefused;
        long mReturned;

        Pending(Event process) {
            mProcess = process;
        }
    }

    /** Checks further events. Returns one breach for each combination of side, kind and operation. */
    public List<Breach> check(List<Event> events) {
        mBreaches.clear();
        for (Event event : events) {
            switch (event.kind()) {
                case "header" -> clear();
                case "begin" -> begin(event);
                case "held" -> held(event);
                case "end" -> end(event, mOpen.remove(event.number("n")));
                default -> {
                }
            }
        }
        return List.copyOf(mBreaches.values());
    }

    // A header begins the events of a new process; earlier addresses have no meaning in it.
    private void clear() {
        List.of(mOpen, mEnding, mCookies, mPending).forEach(Map::clear);
        List.of(mClients, mBlocks, mFinished).forEach(Set::clear);
    }

    private void breach(Side by, String kind, Event event, String found, String expected) {
        mBreaches.merge(List.of(by, kind, event.operation()),
                new Breach(by, kind, event, expected, found, 1), (first, next) -> first.again());
    }

    private void begin(Event event) {
        switch (event.operation()) {
            case "callback" -> callback(event);
            case "visit" -> visit(event);
            default -> call(event);
        }
        mOpen.put(event.number("n"), event);
    }

    private void call(Event event) {
        // The service passes a null client if the library created none.
        long client = event.number("client");
        if (client != 0 && !mClients.contains(client) && !mEnding.containsValue(client)) {
            breach(Side.SERVICE, "dead-client", event, "has the client " + event.text("client"),
                    "a client that createClient returned and that was not destroyed");
        }
        if (event.has("block")) {
            useBlock(event, event.number("block"), "null-block");
        }
        blocks(event).stream().filter(block -> block != 0).forEach(block -> useBlock(event, block, ""));
        if (event.has("section") || event.has("key")) {
            checkValue(Side.SERVICE, event);
        }
        switch (event.operation()) {
            case "process" -> submit(event);
            case "destroyMetadata" -> destroyBlock(event);
            case "destroyClient" -> destroyClient(event);
            default -> {
            }
        }
    }

    private void useBlock(Event event, long block, String ofNull) {
        if (block == 0) {
            breach(Side.SERVICE, ofNull, event, "has a null block", "a block");
        } else if (!mBlocks.contains(block)) {
            breach(Side.SERVICE, "dead-block", event, "has the block 0x" + Long.toHexString(block),
                    "a block that createMetadata returned and that was not destroyed");
        }
    }

    private static List<Long> blocks(Event event) {
        List<Long> blocks = new ArrayList<>();
        for (Json entry : event.elements("metadata")) {
            blocks.add(new Event(entry).number("block"));
        }
        return blocks;
    }

    private void checkValue(Side by, Event event) {
        String name = event.text("section") + "/" + event.text("key");
        if (event.text("section").isEmpty() || event.text("key").isEmpty()) {
            breach(by, "null-key", event, "has the name \"" + name + '"', "a section and a key");
            return;
        }
        long size = event.number("size");
        int expected = ParameterTypes.bytes(event.text("section"), event.text("key"));
        if (expected >= 0 && size != expected) {
            breach(by, "value-size", event, "has " + size + " bytes for " + name, expected + " bytes");
        }
        if (event.operation().equals("setValue") && size > 0 && !event.has("bytes")) {
            breach(by, "null-data", event, "has null data for " + name, size + " bytes of data");
        }
    }

    // Checks the size of a result that the library stores. The probe reads the size during getValue.
    private void held(Event event) {
        mOpen.values().stream().filter(open -> open.operation().equals("getValue")
                && open.number("tid") == event.number("tid")).findFirst().ifPresent(open -> {
                    int expected = ParameterTypes.bytes(open.text("section"), open.text("key"));
                    long size = event.number("size");
                    if (size >= 0 && expected >= 0 && size != expected) {
                        breach(Side.LIBRARY, "value-size", open, "got a value of " + size + " bytes for "
                                + open.text("section") + "/" + open.text("key"), expected + " bytes");
                    }
                });
    }

    private void visit(Event event) {
        Event operation = mOpen.get(event.number("of"));
        if (operation == null || operation.number("tid") != event.number("tid")) {
            breach(Side.LIBRARY, "late-visit", event, operation == null
                            ? "arrives after its operation has returned" : "arrives on another thread",
                    "a visit on its operation's thread before the operation returns");
        }
        checkValue(Side.LIBRARY, event);
    }

    private void submit(Event event) {
        long cookie = event.number("cookie");
        mCookies.put(cookie, new Cookie(event.number("client"), 0, false));
        Request request = new Request(cookie, event.number("nativeReq"));
        mPending.computeIfAbsent(request, any -> new ArrayDeque<>()).add(new Pending(event));
    }

    private void destroyBlock(Event event) {
        long block = event.number("block");
        mBlocks.remove(block);
        boolean isHeld = mOpen.values().stream().anyMatch(open
                -> open.operation().equals("process") && blocks(open).contains(block));
        for (Deque<Pending> several : mPending.values()) {
            for (Pending pending : several) {
                isHeld |= !pending.mIsRefused && event.time() - pending.mReturned < WAIT_NANOSECONDS
                        && blocks(pending.mProcess).indexOf(block) == 0
                        && mClients.contains(pending.mProcess.number("client"));
            }
        }
        if (isHeld && block != 0) {
            breach(Side.SERVICE, "block-in-use", event,
                    "destroys the block " + event.text("block") + " of a request that is being processed",
                    "the request's callback first (for a camera block: the return of process)");
        }
    }

    private void destroyClient(Event event) {
        long client = event.number("client");
        long call = event.number("n");
        mClients.remove(client);
        mEnding.put(call, client);
        mCookies.replaceAll((any, cookie)
                -> cookie.client() == client && !cookie.isDead() ? new Cookie(client, call, false) : cookie);
    }

    private void callback(Event event) {
        Cookie cookie = mCookies.get(event.number("cookie"));
        String name = event.text("name");
        if (cookie != null && cookie.isDead()) {
            breach(Side.LIBRARY, "dead-cookie", event, "arrives after destroyClient has returned",
                    "no callback for a destroyed client");
        } else if (!event.has("name")) {
            breach(Side.LIBRARY, "malformed-callback", event,
                    "has " + event.number("size") + " bytes, too few for its name", "a header and its name");
        } else if (event.isShot()) {
            finish(event);
        } else if (!event.isLightStream()) {
            breach(Side.LIBRARY, "callback-name", event, "has the name \"" + name + '"',
                    Event.SHOT + " or " + Event.LIGHT_STREAM);
        } else if (event.number("size") - NAME_OFFSET - name.length() < LIGHT_STREAM_BYTES) {
            breach(Side.LIBRARY, "light-stream-size", event,
                    "has a payload of " + (event.number("size") - NAME_OFFSET - name.length()) + " bytes",
                    LIGHT_STREAM_BYTES + " bytes or more");
        }
    }

    private void finish(Event event) {
        Request request = new Request(event.number("cookie"), event.number("nativeReq"));
        Deque<Pending> pending = mPending.get(request);
        if (pending != null) {
            pending.remove();
            if (pending.isEmpty()) {
                mPending.remove(request);
            }
            mFinished.add(request);
            if (mFinished.size() > MOST_FINISHED) {
                mFinished.remove(mFinished.iterator().next());
            }
        } else if (mFinished.contains(request)) {
            breach(Side.LIBRARY, "finished-request", event, "is for the request " + event.text("nativeReq")
                    + ", which was called back already", "one callback for each request");
        } else {
            breach(Side.LIBRARY, "unknown-request", event,
                    "is for the request " + event.text("nativeReq") + ", which was not submitted",
                    "the nativeReq of a request");
        }
    }

    private void end(Event event, Event begin) {
        long result = event.number("result");
        if (begin == null) {
            return;
        }
        switch (begin.operation()) {
            case "createClient" -> made(event, mClients, "client");
            case "createMetadata" -> made(event, mBlocks, "block");
            case "process" -> mPending.getOrDefault(new Request(
                    begin.number("cookie"), begin.number("nativeReq")), new ArrayDeque<>())
                    .stream().filter(pending -> pending.mProcess == begin).forEach(pending -> {
                        pending.mReturned = event.time();
                        pending.mIsRefused = event.has("thrown") || result != 0;
                    });
            case "destroyClient" -> {
                mEnding.remove(event.number("n"));
                mCookies.replaceAll((any, cookie) -> cookie.ending() == event.number("n")
                        ? new Cookie(cookie.client(), 0, true) : cookie);
                mPending.keySet().removeIf(request -> mCookies.get(request.cookie()).isDead());
            }
            default -> {
            }
        }
    }

    private void made(Event event, Set<Long> alive, String what) {
        long handle = event.number("result");
        if (event.has("thrown")) {
            return;
        }
        if (handle == 0) {
            breach(Side.LIBRARY, "null-" + what, event, "returned null", "a " + what);
        } else if (!alive.add(handle)) {
            breach(Side.LIBRARY, "same-" + what, event,
                    "returned " + event.text("result") + ", which is in use", "a new " + what);
        }
    }
}
