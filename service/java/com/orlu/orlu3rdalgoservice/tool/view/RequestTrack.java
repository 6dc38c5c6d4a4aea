package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.Call;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;

import java.util.ArrayList;
import java.util.List;

/** The calls of a run that belong to one submitted request. Most are found by its parameter block. */
final class RequestTrack {
    private final Call mProcess;
    /** The handle of the request's parameter block; "" if the request has none. */
    private final String mBlock;
    private final List<Call> mBefore;
    private final List<Call> mAfter;

    private RequestTrack(Call process, List<Call> before, List<Call> after) {
        mProcess = process;
        mBlock = parameterBlock(process.begin());
        mBefore = before;
        mAfter = after;
    }

    /** Returns one track for each process call. */
    static List<RequestTrack> of(RecordedEvents events) {
        List<Call> calls = events.calls();
        List<RequestTrack> tracks = new ArrayList<>();
        for (int i = 0; i < calls.size(); ++i) {
            if (calls.get(i).operation().equals("process")) {
                tracks.add(new RequestTrack(
                        calls.get(i), calls.subList(0, i), calls.subList(i + 1, calls.size())));
            }
        }
        return tracks;
    }

    private static String parameterBlock(Event process) {
        for (Json element : process.elements("metadata")) {
            Event metadata = new Event(element);
            if (metadata.has("kind") && metadata.number("kind") == 0) {
                return metadata.text("block");
            }
        }
        return "";
    }

    Call process() {
        return mProcess;
    }

    /** Returns the process thread's first call that set a parameter of the request; null if there is none. */
    Call firstWrite() {
        Call first = null;
        for (int i = mBefore.size() - 1; i >= 0; --i) {
            Call call = mBefore.get(i);
            // Calls before this destroyMetadata are about an earlier block with the same handle.
            if (call.operation().equals("destroyMetadata") && isOnBlock(call)) {
                break;
            }
            if (call.operation().equals("setValue") && isOnBlock(call) && isOnThread(call, mProcess)) {
                first = call;
            }
        }
        return first;
    }

    /** Returns the callback that finishes the request, else the process call's first callback, else null. */
    Call callback() {
        Call other = null;
        for (Call call : mAfter) {
            Event begin = call.begin();
            if (call.operation().equals("callback") && begin.number("of") == mProcess.begin().number("n")) {
                if (begin.isShot()) {
                    return call;
                }
                other = other == null ? call : other;
            }
        }
        return other;
    }

    /**
     * Returns the calls that read results, then the call that destroys the parameter block. All are on the
     * thread of the first read. Returns an empty list if no call reads results.
     */
    List<Call> results() {
        List<Call> results = new ArrayList<>();
        for (Call call : mAfter) {
            if (isOnBlock(call) && (results.isEmpty() || isOnThread(call, results.get(0)))) {
                boolean isEnd = call.operation().equals("destroyMetadata");
                if (!isEnd || !results.isEmpty()) {
                    results.add(call);
                }
                if (isEnd) {
                    break;
                }
            }
        }
        return results;
    }

    /**
     * Returns the next calls on the process call's thread after process returned: the clean-up calls, then
     * the first other call, if any.
     */
    List<Call> untilNext() {
        List<Call> calls = new ArrayList<>();
        for (Call call : mAfter) {
            boolean isInside = mProcess.end() == null || call.begin().time() < mProcess.end().time();
            if (isOnThread(call, mProcess) && !isInside) {
                calls.add(call);
                if (!isTidyingUp(call)) {
                    break;
                }
            }
        }
        return calls;
    }

    /** Returns whether the call destroys a block other than the parameter block, such as a camera block. */
    boolean isTidyingUp(Call call) {
        return call.operation().equals("destroyMetadata") && !isOnBlock(call);
    }

    private boolean isOnBlock(Call call) {
        return !mBlock.isEmpty() && call.begin().text("block").equals(mBlock);
    }

    private static boolean isOnThread(Call call, Call other) {
        return call.begin().number("tid") == other.begin().number("tid");
    }
}
