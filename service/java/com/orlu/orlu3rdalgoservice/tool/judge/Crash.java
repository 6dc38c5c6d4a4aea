package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.model.Call;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;

import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** Explains how a process ended, and during which operation of the algorithm library. */
public final class Crash {
    private static final int LAST_EVENTS = 40;
    private static final int SIGNAL_BASE = 128;
    private static final int INTERRUPT = 2;
    private static final int TERMINATE = 15;
    /** Operations before the first request. A library that crashes in one of them is unusable. */
    private static final Set<String> OPENING = Set.of("load", "entry", "createClient", "init");
    private static final Map<Integer, String> SIGNALS = Map.of(2, "SIGINT", 4, "SIGILL", 6, "SIGABRT",
            7, "SIGBUS", 8, "SIGFPE", 9, "SIGKILL", 11, "SIGSEGV", 15, "SIGTERM");

    private static final Pattern VM_SIGNAL =
            Pattern.compile("^#\\s+(SIG[A-Z]+) \\(0x([0-9a-f]+)\\)", Pattern.MULTILINE);
    private static final Pattern VM_FRAME = Pattern.compile("^# C\\s+\\[(.+?)]", Pattern.MULTILINE);

    private final RecordedEvents mEvents;
    private final int mExitStatus;
    private final String mVmReport;
    private final Call mOpen;

    /** Takes the events of the whole run, the exit status, and the VM's crash report ("" for none). */
    public Crash(RecordedEvents events, int exitStatus, String vmReport) {
        mEvents = events;
        mExitStatus = exitStatus;
        mVmReport = vmReport;
        List<Call> open = events.open();
        mOpen = open.isEmpty() ? null : open.get(open.size() - 1);
    }

    /** Returns one of Verdict's statuses. */
    public int status() {
        return mOpen != null && OPENING.contains(mOpen.operation()) ? Verdict.UNUSABLE : Verdict.FAILED;
    }

    /** Returns the library, the operation, and how the process died, in one line. */
    public String reason() {
        String path = LibraryCheck.path(mEvents);
        if (wasStopped()) {
            return "stopped by " + ending()
                    + (mOpen == null ? "" : ", with " + operation(mOpen) + " still running");
        }
        if (path.isEmpty()) {
            return "the process ended by " + ending() + " before an algorithm library was open";
        }
        return "the algorithm library " + path + " ended the process by " + ending() + " " + place();
    }

    private boolean wasStopped() {
        return mExitStatus == SIGNAL_BASE + INTERRUPT || mExitStatus == SIGNAL_BASE + TERMINATE;
    }

    private String ending() {
        if (mExitStatus <= SIGNAL_BASE) {
            return "exit " + mExitStatus;
        }
        // The VM handles a fatal signal by aborting, so the exit status shows SIGABRT. The VM's report names
        // the original signal and the place.
        Matcher fault = VM_SIGNAL.matcher(mVmReport);
        if (fault.find()) {
            Matcher frame = VM_FRAME.matcher(mVmReport);
            return "signal " + Integer.parseInt(fault.group(2), 16) + " (" + fault.group(1)
                    + (frame.find() ? " at " + frame.group(1) : "") + ")";
        }
        int signal = mExitStatus - SIGNAL_BASE;
        return "signal " + signal + (SIGNALS.containsKey(signal) ? " (" + SIGNALS.get(signal) + ")" : "");
    }

    // If no operation is open, the last operation's exception, a library thread or an exit ended the process.
    private String place() {
        if (mOpen != null) {
            return "in " + operation(mOpen);
        }
        List<Call> calls = mEvents.calls();
        if (calls.isEmpty()) {
            return "before its first operation";
        }
        Call last = calls.get(calls.size() - 1);
        return last.hasThrown() ? "after " + operation(last) + " " + last.outcome()
                : "outside of any operation; the last operation was " + operation(last);
    }

    private static String operation(Call call) {
        Event begin = call.begin();
        return call.operation() + switch (call.operation()) {
            case "process" -> " of request " + begin.text("reqId");
            case "setValue", "getValue", "visit" -> " of " + begin.text("section") + "/" + begin.text("key");
            default -> "";
        };
    }

    /** Returns the crash file's text: reason, operations in progress, last events, the VM's report. */
    public String report() {
        StringBuilder text = new StringBuilder(reason()).append("\n\nOperations that had not returned:\n");
        mEvents.open().forEach(call -> text.append(JsonWriter.line(call.begin().fields())).append('\n'));
        List<Event> events = mEvents.events();
        text.append("\nThe last events:\n");
        events.subList(Math.max(0, events.size() - LAST_EVENTS), events.size())
                .forEach(event -> text.append(JsonWriter.line(event.fields())).append('\n'));
        text.append("\nCore dumps are written only with ORLU_CORES=1 in the environment.\n\n");
        return text.append(mVmReport).toString();
    }
}
