package com.orlu.orlu3rdalgoservice.tool.compare;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.HandedImage;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;

/**
 * Compares what two runs did, in the order of execution. Each difference is one line such as
 * "outputs: 1 / 2": the first run's value, then the other run's value.
 */
public final class Comparison {
    // An id that depends on the number of earlier requests of the process.
    private static final Set<String> NEVER_EQUAL = Set.of("nativeRequestAddr");

    private final Run mOne;
    private final Run mOther;
    private final Set<String> mIgnored;
    private final Closeness mCloseness;
    private final OutputComparison mOutputs;
    private final List<Difference> mDifferences = new ArrayList<>();

    /**
     * Creates a comparison. `ignored` contains the names of parameters, put values, calls and images to
     * ignore, and may contain "algorithm list" and "camera metadata". Numbers that differ by at most the
     * tolerance are equal.
     */
    public Comparison(
            Run one, Run other, Set<String> ignored, double tolerance, OutputComparison outputs) {
        mOne = one;
        mOther = other;
        mIgnored = ignored;
        mCloseness = new Closeness(tolerance);
        mOutputs = outputs;
    }

    /** Returns all differences. An unfinished run is compared as far as it got. */
    public List<Difference> differences() throws MistakeException, IOException {
        boolean bothComplete = mOne.isComplete() && mOther.isComplete();
        if (mOne.isComplete() && !mOther.isComplete()) {
            differ("end", "reached", "not reached");
        }
        if (mOne.hasEvents() && mOther.hasEvents()) {
            mDifferences.addAll(
                    new ParameterComparison(mIgnored, mCloseness).differences(mOne, mOther, bothComplete));
            compareCameraMetadata(bothComplete);
            compareAlgorithms(mOne.algorithms(), mOther.algorithms(), bothComplete);
        }
        if (bothComplete) {
            compareOutcomes();
            comparePuts();
            compareHanded();
            compareOutputs();
        }
        return mDifferences;
    }

    /** Returns notes on uncompared parts, on inputs and images that differ, and on durations. */
    public List<String> notes() throws MistakeException {
        List<String> notes = new ArrayList<>();
        for (Run run : List.of(mOne, mOther)) {
            if (!run.hasEvents()) {
                notes.add(run.name() + " has no events of the probe: parameters are not compared");
            }
            if (!run.isComplete()) {
                notes.add(run.name() + " did not finish: compared up to that point");
            }
        }
        notes.addAll(new GivenNotes(mOne, mOther).lines());
        for (Run run : List.of(mOne, mOther)) {
            run.handed().stream().filter(image -> image.match() == HandedImage.Match.DIFFERENT).forEach(
                    image -> notes.add(run.name() + ": " + image.name() + ": " + image.text()));
        }
        mOne.times().forEach((call, time) -> {
            Double counterpart = mOther.times().get(call);
            if (counterpart != null) {
                notes.add("%s took %.1f ms / %.1f ms".formatted(call, time, counterpart));
            }
        });
        return notes;
    }

    /** Returns the numbers of parameters, frames and outputs, each the smaller of the two runs' numbers. */
    public String compared() {
        return "%d parameters, %d frames, %d outputs".formatted(
                Math.min(mOne.parameters().size(), mOther.parameters().size()),
                Math.min(mOne.puts().size(), mOther.puts().size()),
                Math.min(mOne.results().size(), mOther.results().size()));
    }

    private void differ(String what, Object one, Object other) {
        differIn("", what, one, other);
    }

    private void differIn(String parameter, String what, Object one, Object other) {
        mDifferences.add(new Difference(what + ": " + one + " / " + other, parameter));
    }

    private void compareCameraMetadata(boolean whole) {
        if (mIgnored.contains("camera metadata")) {
            return;
        }
        List<byte[]> one = mOne.cameraMetadata();
        List<byte[]> other = mOther.cameraMetadata();
        for (int i = 0; i < Math.min(one.size(), other.size()); ++i) {
            int at = Arrays.mismatch(one.get(i), other.get(i));
            if (at >= 0) {
                differ("camera metadata of frame " + i, one.get(i).length + " bytes",
                        other.get(i).length + " bytes, first differs at byte " + at);
            }
        }
        if (whole && one.size() != other.size()) {
            differ("camera metadata", one.size() + " frames", other.size() + " frames");
        }
    }

    private void compareAlgorithms(List<List<String>> one, List<List<String>> other, boolean whole) {
        int common = Math.min(one.size(), other.size());
        if (!mIgnored.contains("algorithm list")
                && (whole ? !one.equals(other) : !one.subList(0, common).equals(other.subList(0, common)))) {
            differIn(Dependences.ALGORITHMS, "algorithm list", one, other);
        }
    }

    private void compareOutcomes() {
        Set<String> calls = new LinkedHashSet<>(mOne.outcomes().keySet());
        calls.addAll(mOther.outcomes().keySet());
        calls.removeAll(mIgnored);
        for (String call : calls) {
            String one = mOne.outcomes().getOrDefault(call, "not reached");
            String other = mOther.outcomes().getOrDefault(call, "not reached");
            if (!one.equals(other)) {
                differ(call, one, other);
            }
        }
    }

    private void comparePuts() {
        if (mOne.puts().size() != mOther.puts().size()) {
            differ("frames with put values", mOne.puts().size(), mOther.puts().size());
        }
        for (int frame = 0; frame < Math.min(mOne.puts().size(), mOther.puts().size()); ++frame) {
            Map<String, Json> one = mOne.puts().get(frame);
            Map<String, Json> other = mOther.puts().get(frame);
            Set<String> keys = new LinkedHashSet<>(one.keySet());
            keys.addAll(other.keySet());
            keys.removeAll(mIgnored);
            keys.removeAll(NEVER_EQUAL);
            for (String key : keys) {
                if (!mCloseness.isClose(one.get(key), other.get(key))) {
                    mDifferences.add(new Difference("frame " + frame + " put " + key + ": "
                            + ValueDifference.of(text(one.get(key)), text(other.get(key)),
                                    list(one.get(key)), list(other.get(key))), ""));
                }
            }
        }
    }

    private static String text(Json put) {
        return put == null ? "not put" : JsonWriter.line(put);
    }

    // Returns the value without its type: [1, 2] for {"ints": [1, 2]}.
    private static Json list(Json put) {
        return put != null && put.entries().size() == 1 ? put.entries().values().iterator().next() : put;
    }

    // In each run, the algorithm library's images were compared with Java's. Reports each image for which the
    // two runs have unlike results. Skips images whose result is unknown in a run.
    private void compareHanded() {
        for (HandedImage one : known(mOne)) {
            for (HandedImage other : known(mOther)) {
                if (one.name().equals(other.name()) && !one.text().equals(other.text())
                        && !mIgnored.contains(one.kind() + " " + one.index())) {
                    differ(one.name(), one.text(), other.text());
                }
            }
        }
    }

    private static List<HandedImage> known(Run run) {
        return run.handed().stream().filter(image -> image.match() != HandedImage.Match.UNKNOWN).toList();
    }

    private void compareOutputs() throws MistakeException, IOException {
        if (mOne.results().size() != mOther.results().size()) {
            differ("outputs", mOne.results().size(), mOther.results().size());
        }
        for (int i = 0; i < Math.min(mOne.results().size(), mOther.results().size()); ++i) {
            if (!mIgnored.contains("output " + i)) {
                mOutputs.differences(
                        i, mOne.results().get(i), mOther.results().get(i), mCloseness.tolerance())
                        .forEach(line -> mDifferences.add(new Difference(line, "")));
            }
        }
    }
}
