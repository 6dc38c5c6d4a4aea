package com.orlu.orlu3rdalgoservice.tool.recording;

import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

import com.orlu.orlu3rdalgoservice.tool.report.Parameter;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileException;
import com.orlu.orlu3rdalgoservice.tool.trial.Dependences;

import java.io.IOException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.Set;

/**
 * Compares what two runs did, in the order of the work. Each difference has one line: the first run's, " / ",
 * the other's.
 */
public final class Comparison {
    // An address of the process.
    private static final Set<String> NEVER_EQUAL = Set.of("nativeRequestAddr");

    private static final int MOST_INPUTS = 12;

    private final RunRecord mOne;
    private final RunRecord mOther;
    private final Set<String> mIgnored;
    private final double mTolerance;
    private final OutputComparison mOutputs;
    private final List<Difference> mDifferences = new ArrayList<>();

    /**
     * Compares. Ignored are parameters, values put, calls and outputs of these names; numbers that differ by
     * no more than the tolerance are equal.
     */
    public Comparison(
            RunRecord one, RunRecord other, Set<String> ignored, double tolerance, OutputComparison outputs) {
        mOne = one;
        mOther = other;
        mIgnored = ignored;
        mTolerance = tolerance;
        mOutputs = outputs;
    }

    /** All differences. A run that did not end is compared as far as it goes. */
    public List<Difference> differences() throws RequestFileException, IOException {
        boolean bothComplete = mOne.isComplete() && mOther.isComplete();
        if (mOne.isComplete() && !mOther.isComplete()) {
            differ("end", "reached", "not reached");
        }
        if (mOne.hasEvents() && mOther.hasEvents()) {
            compareParameters(bothComplete);
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

    /** What could not be compared, and times: no differences. */
    public List<String> notes() {
        List<String> notes = new ArrayList<>();
        for (RunRecord run : List.of(mOne, mOther)) {
            if (!run.hasEvents()) {
                notes.add(run.name() + " has no events of the probe: parameters are not compared");
            }
            if (!run.isComplete()) {
                notes.add(run.name() + " did not come to its end: compared up to there");
            }
        }
        notes.addAll(inputs());
        for (RunRecord run : List.of(mOne, mOther)) {
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

    private List<String> inputs() {
        List<GivenTag> given = GivenTag.of(mOne, mOther);
        List<String> lines = new ArrayList<>(settings());
        given.stream().limit(MOST_INPUTS).forEach(tag
                -> lines.add("frame " + tag.frame() + " was given " + tag.text()));
        if (given.size() > MOST_INPUTS) {
            lines.add("and " + (given.size() - MOST_INPUTS) + " other values given differ");
        }
        return lines;
    }

    private List<String> settings() {
        if (mOne.folder() == null || mOther.folder() == null) {
            return List.of();
        }
        Set<String> names = new LinkedHashSet<>(mOne.settings().keySet());
        names.addAll(mOther.settings().keySet());
        List<String> lines = new ArrayList<>();
        for (String name : names) {
            JsonElement one = mOne.settings().get(name);
            JsonElement other = mOther.settings().get(name);
            if (!Objects.equals(one, other)) {
                lines.add("given " + name + " = " + (one == null ? "none" : one) + " / "
                        + (other == null ? "none" : other));
            }
        }
        if (mOne.frames().size() != mOther.frames().size()) {
            lines.add("given frames: " + mOne.frames().size() + " / " + mOther.frames().size());
        }
        return lines;
    }

    /** How much was compared. */
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

    private List<Parameter> wanted(RunRecord run) {
        return run.parameters()
                .stream()
                .filter(parameter
                        -> !mIgnored.contains(parameter.name()) && !mIgnored.contains(parameter.key()))
                .toList();
    }

    private void compareParameters(boolean whole) {
        List<Parameter> one = wanted(mOne);
        List<Parameter> other = wanted(mOther);
        int common = Math.min(one.size(), other.size());
        for (int i = 0; i < common; ++i) {
            if (!one.get(i).name().equals(other.get(i).name())) {
                differ("parameter " + i, text(one.get(i)),
                        text(other.get(i)) + ", another order from there on");
                compareByKey(one, other, whole);
                return;
            }
            compareValues("parameter " + i + " ", one, other, one.get(i), other.get(i));
        }
        if (whole && one.size() != other.size()) {
            boolean isOne = one.size() > common;
            Parameter more = (isOne ? one : other).get(common);
            differIn(more.fullName(), "parameter " + common, isOne ? text(more) : "none",
                    isOne ? "none" : text(more));
            differ("parameters", one.size() + " in all", other.size() + " in all");
        }
    }

    private static String text(Parameter parameter) {
        return parameter.name() + " = " + parameter.text();
    }

    private void compareValues(
            String where, List<Parameter> ones, List<Parameter> others, Parameter one, Parameter other) {
        if (!Arrays.equals(one.bytes(), other.bytes()) && !isClose(one.json(), other.json())) {
            // A key that is written for each frame, or again, says which write it is.
            int writes = countOf(ones, one.name());
            String write = writes > 1 ? ", write " + indexOf(ones, one) + " of " + writes : "";
            differIn(one.fullName(), where + one.name() + write, one.text(), other.text());
        }
    }

    private static int countOf(List<Parameter> parameters, String name) {
        return (int) parameters.stream().filter(parameter -> parameter.name().equals(name)).count();
    }

    private static int indexOf(List<Parameter> parameters, Parameter wanted) {
        int index = 0;
        for (Parameter parameter : parameters) {
            index += parameter.name().equals(wanted.name()) ? 1 : 0;
            if (parameter == wanted) {
                break;
            }
        }
        return index;
    }

    private void compareByKey(List<Parameter> one, List<Parameter> other, boolean whole) {
        Map<String, List<Parameter>> ones = byName(one);
        Map<String, List<Parameter>> others = byName(other);
        Set<String> names = new LinkedHashSet<>(ones.keySet());
        names.addAll(others.keySet());
        for (String name : names) {
            List<Parameter> left = ones.getOrDefault(name, List.of());
            List<Parameter> right = others.getOrDefault(name, List.of());
            for (int i = 0; i < Math.min(left.size(), right.size()); ++i) {
                compareValues("parameter ", one, other, left.get(i), right.get(i));
            }
            if (whole && left.size() != right.size()) {
                differIn((left.isEmpty() ? right : left).get(0).fullName(), "parameter " + name,
                        written(left), written(right));
            }
        }
    }

    private static Map<String, List<Parameter>> byName(List<Parameter> parameters) {
        Map<String, List<Parameter>> byName = new LinkedHashMap<>();
        parameters.forEach(parameter
                -> byName.computeIfAbsent(parameter.name(), name -> new ArrayList<>()).add(parameter));
        return byName;
    }

    private static String written(List<Parameter> writes) {
        return writes.isEmpty() ? "not written"
                                : "written " + writes.size() + (writes.size() == 1 ? " time, " : " times, ")
                        + writes.get(0).text();
    }

    private void compareCameraMetadata(boolean whole) {
        List<byte[]> one = mOne.cameraMetadata();
        List<byte[]> other = mOther.cameraMetadata();
        for (int i = 0; i < Math.min(one.size(), other.size()); ++i) {
            int at = Arrays.mismatch(one.get(i), other.get(i));
            if (at >= 0 && !mIgnored.contains("camera metadata")) {
                differ("camera metadata of frame " + i, one.get(i).length + " bytes",
                        other.get(i).length + " bytes, different from byte " + at + " on");
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
            differ("frames with values put", mOne.puts().size(), mOther.puts().size());
        }
        for (int frame = 0; frame < Math.min(mOne.puts().size(), mOther.puts().size()); ++frame) {
            Map<String, JsonElement> one = mOne.puts().get(frame);
            Map<String, JsonElement> other = mOther.puts().get(frame);
            Set<String> keys = new LinkedHashSet<>(one.keySet());
            keys.addAll(other.keySet());
            keys.removeAll(mIgnored);
            keys.removeAll(NEVER_EQUAL);
            for (String key : keys) {
                if (!isClose(one.get(key), other.get(key))) {
                    differ("frame " + frame + " put " + key, text(one.get(key)), text(other.get(key)));
                }
            }
        }
    }

    private static String text(JsonElement put) {
        return put == null ? "not put" : put.toString();
    }

    // What the library was given and left, beside what Java had; only of runs whose probes kept pixels.
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

    private static List<HandedImage> known(RunRecord run) {
        return run.handed().stream().filter(image -> image.match() != HandedImage.Match.UNKNOWN).toList();
    }

    private void compareOutputs() throws RequestFileException, IOException {
        if (mOne.results().size() != mOther.results().size()) {
            differ("outputs", mOne.results().size(), mOther.results().size());
        }
        for (int i = 0; i < Math.min(mOne.results().size(), mOther.results().size()); ++i) {
            if (!mIgnored.contains("output " + i)) {
                mOutputs.differences(i, mOne.results().get(i), mOther.results().get(i), mTolerance)
                        .forEach(line -> mDifferences.add(new Difference(line, "")));
            }
        }
    }

    // Numbers at the same place of the same structure; all else must be equal.
    private boolean isClose(JsonElement one, JsonElement other) {
        if (one == null || other == null) {
            return one == other;
        }
        if (one.isJsonArray() && other.isJsonArray()
                && one.getAsJsonArray().size() == other.getAsJsonArray().size()) {
            for (int i = 0; i < one.getAsJsonArray().size(); ++i) {
                if (!isClose(one.getAsJsonArray().get(i), other.getAsJsonArray().get(i))) {
                    return false;
                }
            }
            return true;
        }
        if (one instanceof JsonObject left && other instanceof JsonObject right
                && left.keySet().equals(right.keySet())) {
            return left.keySet().stream().allMatch(name -> isClose(left.get(name), right.get(name)));
        }
        boolean areNumbers = one.isJsonPrimitive() && other.isJsonPrimitive()
                && one.getAsJsonPrimitive().isNumber() && other.getAsJsonPrimitive().isNumber();
        return Objects.equals(one, other)
                || mTolerance > 0 && areNumbers
                && Math.abs(one.getAsDouble() - other.getAsDouble()) <= mTolerance;
    }
}
