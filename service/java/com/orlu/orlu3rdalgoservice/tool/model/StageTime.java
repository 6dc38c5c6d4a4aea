package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch.Mark;

import java.util.ArrayList;
import java.util.List;
import java.util.Map;

/**
 * A stage of a run. The stages follow each other without gaps. The probe's events divide the call of
 * processImage into several stages.
 *
 * @param start     time of System.nanoTime()
 * @param end       time of System.nanoTime()
 * @param thread    the side whose thread works, "Java" or "library"; "Java" if no callback arrives
 * @param waits     the event that Java's thread waits for; empty if Java's thread works
 * @param faults    page faults of the working thread
 * @param allocated bytes that the working thread allocates on Java's heap; -1 in the parts of processImage,
 *                  where they are not measured
 * @param passed    bytes of values passed to and from the algorithm library
 */
public record StageTime(String stage, long start, long end, String thread, String waits, long faults,
        long allocated, long passed) {
    private static final String JAVA = "Java";
    private static final String LIBRARY = "library";
    private static final double NANOSECONDS_PER_MILLISECOND = 1e6;

    /** Returns the stages between these marks; the last mark is the end of the run. Empty without marks. */
    static List<StageTime> of(List<Mark> marks, RecordedEvents events) {
        List<StageTime> stages = new ArrayList<>();
        for (int i = 0; i + 1 < marks.size(); ++i) {
            Mark begin = marks.get(i);
            Mark end = marks.get(i + 1);
            if (begin.stage().equals(Mark.PROCESS_IMAGE)) {
                new Division(events, begin, end, stages).add();
            } else {
                stages.add(new StageTime(begin.stage(), begin.time(), end.time(), JAVA, "",
                        end.faults() - begin.faults(), end.allocated() - begin.allocated(),
                        passed(events, begin.tid(), begin.time(), end.time())));
            }
        }
        return stages;
    }

    public double milliseconds() {
        return (end - start) / NANOSECONDS_PER_MILLISECOND;
    }

    /** Milliseconds from the start of the first stage to the end of the last stage. */
    public static double wholeMilliseconds(List<StageTime> stages) {
        return stages.isEmpty() ? 0
                : (stages.get(stages.size() - 1).end - stages.get(0).start) / NANOSECONDS_PER_MILLISECOND;
    }

    public Map<String, Object> json() {
        return JsonWriter.object("stage", stage, "milliseconds", milliseconds(), "thread", thread, "waits",
                waits, "pageFaults", faults, "allocated", allocated < 0 ? null : allocated, "passed", passed);
    }

    private static long passed(RecordedEvents events, int tid, long from, long to) {
        return events.events("begin").stream()
                .filter(event -> event.number("tid") == tid && event.time() >= from && event.time() < to
                        && (event.has("section") || event.operation().equals("setRaw")))
                .mapToLong(event -> event.number("size")).sum();
    }

    /**
     * Divides the stage of processImage into parts. The stage of a full-async request lasts until the result
     * is read.
     */
    private static final class Division {
        private final RecordedEvents mEvents;
        private final Mark mBegin;
        private final Mark mEnd;
        private final List<StageTime> mStages;
        // Start time of the next part.
        private long mStart;
        private long mFaults;

        Division(RecordedEvents events, Mark begin, Mark end, List<StageTime> stages) {
            mEvents = events;
            mBegin = begin;
            mEnd = end;
            mStages = stages;
            mStart = begin.time();
            mFaults = begin.faults();
        }

        void add() {
            Call process = mEvents.calls("process").stream().filter(call -> isHere(call.begin())
                    && isOwn(call.begin())).findFirst().orElse(null);
            boolean isCalledBack = false;
            if (process != null && process.end() != null) {
                part("up to process", process.begin());
                part("process", process.end());
                isCalledBack = addWait(process);
            }
            add(process == null ? Mark.PROCESS_IMAGE : isCalledBack ? "results" : "no callback", JAVA,
                    process == null || isCalledBack ? "" : "a callback that never arrived", mEnd.time(),
                    mEnd.faults() - mFaults);
        }

        // Adds the wait for the callback, and the wake-up until the next event of Java's thread. Returns
        // false if no callback arrives.
        private boolean addWait(Call process) {
            Event callback = mEvents.calls("callback").stream().map(Call::begin)
                    .filter(event -> event.number("of") == process.begin().number("n")
                            && event.isShot() && isHere(event))
                    .findFirst().orElse(null);
            // If the library calls back before process returns, Java does not wait.
            if (callback == null || callback.time() < mStart) {
                return callback != null;
            }
            Event next = mEvents.events().stream().filter(event -> isOwn(event) && isHere(event)
                    && event.time() >= callback.time()).findFirst().orElse(null);
            add("the algorithms", LIBRARY, "the callback", callback.time(),
                    callback.number("faults") - faultsBefore(callback));
            if (next != null) {
                part("wake-up", next);
            }
            return true;
        }

        // The page-fault count in the previous event of the same thread; 0 if there is none.
        private long faultsBefore(Event event) {
            return mEvents.events().stream().filter(other -> other.number("tid") == event.number("tid")
                    && other.time() < event.time()).mapToLong(other -> other.number("faults")).max()
                    .orElse(0);
        }

        private boolean isHere(Event event) {
            return event.time() >= mBegin.time() && event.time() <= mEnd.time();
        }

        private boolean isOwn(Event event) {
            return event.number("tid") == mBegin.tid();
        }

        // Adds a part in which Java's thread works. The part lasts until `end`, an event of this thread.
        private void part(String stage, Event end) {
            add(stage, JAVA, "", end.time(), end.number("faults") - mFaults);
            mFaults = end.number("faults");
        }

        private void add(String stage, String thread, String waits, long end, long faults) {
            mStages.add(new StageTime(stage, mStart, end, thread, waits, faults, -1,
                    thread.equals(JAVA) ? passed(mEvents, mBegin.tid(), mStart, end) : 0));
            mStart = end;
        }
    }
}
