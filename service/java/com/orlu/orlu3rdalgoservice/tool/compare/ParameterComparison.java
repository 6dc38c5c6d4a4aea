package com.orlu.orlu3rdalgoservice.tool.compare;

import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.model.Run;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;

/**
 * Compares the parameters of two runs in the order in which each run passed them. If the order differs,
 * compares all parameters by name.
 */
final class ParameterComparison {
    private final Set<String> mIgnored;
    private final Closeness mCloseness;
    private final List<Difference> mDifferences = new ArrayList<>();

    ParameterComparison(Set<String> ignored, Closeness closeness) {
        mIgnored = ignored;
        mCloseness = closeness;
    }

    /** Returns all differences. Surplus parameters of one run count only if both runs finished (`whole`). */
    List<Difference> differences(Run one, Run other, boolean whole) {
        compareInOrder(wanted(one), wanted(other), whole);
        return mDifferences;
    }

    private void differ(String parameter, String what, String one, String other) {
        mDifferences.add(new Difference(what + ": " + one + " / " + other, parameter));
    }

    private List<Parameter> wanted(Run run) {
        return run.parameters()
                .stream()
                .filter(parameter
                        -> !mIgnored.contains(parameter.name()) && !mIgnored.contains(parameter.key()))
                .toList();
    }

    private void compareInOrder(List<Parameter> one, List<Parameter> other, boolean whole) {
        int common = Math.min(one.size(), other.size());
        for (int i = 0; i < common; ++i) {
            if (!one.get(i).name().equals(other.get(i).name())) {
                differ(one.get(i).fullName(), "parameter " + i, text(one.get(i)),
                        text(other.get(i)) + "; the order differs from there on");
                compareByKey(one, other, whole);
                return;
            }
            compareValues("parameter " + i + " ", one, other, one.get(i), other.get(i));
        }
        if (whole && one.size() != other.size()) {
            boolean isOne = one.size() > common;
            Parameter more = (isOne ? one : other).get(common);
            differ(more.fullName(), "parameter " + common, isOne ? text(more) : "none",
                    isOne ? "none" : text(more));
            differ("", "parameters", one.size() + " in all", other.size() + " in all");
        }
    }

    private static String text(Parameter parameter) {
        return parameter.name() + " = " + ValueDifference.cut(parameter.text());
    }

    private void compareValues(
            String where, List<Parameter> ones, List<Parameter> others, Parameter one, Parameter other) {
        if (!Arrays.equals(one.bytes(), other.bytes()) && !mCloseness.isClose(one.json(), other.json())) {
            // If the run wrote this parameter several times, the text names the write: "write 2 of 3".
            int writes = countOf(ones, one.name());
            String write = writes > 1 ? ", write " + indexOf(ones, one) + " of " + writes : "";
            mDifferences.add(new Difference(
                    where + one.name() + write + ": " + ValueDifference.of(one, other), one.fullName()));
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
                differ((left.isEmpty() ? right : left).get(0).fullName(), "parameter " + name,
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
                        + ValueDifference.cut(writes.get(0).text());
    }
}
