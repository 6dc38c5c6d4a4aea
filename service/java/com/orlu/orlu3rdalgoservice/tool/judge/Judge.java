package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.model.Call;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.run.RequestRunner;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;

/** Judges one request by its events and outputs. The algorithm library must be usable (LibraryCheck). */
public final class Judge {
    /** Operations whose negative results mean a missing or unknown key, not a failure. */
    private static final Set<String> ANSWERING =
            Set.of("getValue", "visit", "paramAlgoUpdateToSystem", "paramSystemDownloadToAlgo");

    private final Run mRun;
    private final List<String> mOutputProblems;
    private final Callbacks mCallbacks;
    private final List<String> mReasons = new ArrayList<>();

    private Judge(Run run, List<String> outputProblems) {
        mRun = run;
        mOutputProblems = outputProblems;
        mCallbacks = new Callbacks(run.events(), run.request().fullAsync(), run.ran());
    }

    /** Returns the verdict. `outputProblems`: problems of the outputs that algorithms should have written. */
    public static Verdict of(Run run, List<String> outputProblems) {
        return new Judge(run, outputProblems).judge();
    }

    private Verdict judge() {
        mReasons.addAll(mRun.ran().problems());
        LibraryCheck.addMissingCarriers(mRun.events(), mReasons);
        boolean isMissing = mCallbacks.isMissing();
        checkOperations(isMissing ? mRun.handover().process() : null);
        if (isMissing) {
            mReasons.add(noCallback());
        } else {
            checkIgnored();
            checkAlgorithms();
            checkOutputs();
        }
        return mReasons.isEmpty() ? Verdict.ok() : new Verdict(Verdict.FAILED, mReasons);
    }

    // Reports repeated failures as one reason, with a count. Skips `except`, which noCallback() reports.
    private void checkOperations(Call except) {
        Map<String, Integer> counts = new LinkedHashMap<>();
        for (Call call : mRun.events().calls()) {
            if (call != except && hasFailed(call)) {
                counts.merge(call.operation() + " " + outcome(call), 1, Integer::sum);
            }
        }
        counts.forEach((text, count) -> mReasons.add(text + (count == 1 ? "" : " (" + count + " times)")));
    }

    private static boolean hasFailed(Call call) {
        boolean isBelow = call.end() != null && call.end().text("result").startsWith("-");
        return call.hasThrown() || isBelow && !ANSWERING.contains(call.operation()) || hasNoBlock(call);
    }

    private static boolean hasNoBlock(Call call) {
        return call.operation().equals("createMetadata") && call.returned(0);
    }

    private static String outcome(Call call) {
        return hasNoBlock(call) ? "returned no block" : call.outcome();
    }

    private String noCallback() {
        Call process = mRun.handover().process();
        String text = "no callback for request %d within %d s; process was called and %s".formatted(
                mRun.request().id(), RequestRunner.CALLBACK_SECONDS, process.outcome());
        if (process.end() != null) {
            text += " after %.1f ms".formatted(process.end().milliseconds());
        }
        String ignored = mCallbacks.ignored();
        return ignored.isEmpty() ? text : text + "; " + ignored;
    }

    // An ignored callback is a fault even if another callback finished the request: a light-stream event may
    // be lost, or a message misspelt.
    private void checkIgnored() {
        String ignored = mCallbacks.ignored();
        if (!ignored.isEmpty()) {
            mReasons.add(ignored);
        }
    }

    private void checkAlgorithms() {
        List<String> idle = mRun.idleAlgorithms();
        if (!idle.isEmpty()) {
            mReasons.add("passed on but not run: " + String.join(", ", idle));
        }
    }

    private void checkOutputs() {
        if (mRun.handover().process() != null) {
            mReasons.addAll(mOutputProblems);
        }
    }
}
