package com.orlu.orlu3rdalgoservice.tool.explain;

import com.orlu.orlu3rdalgoservice.tool.explain.TrialLibrary.Write;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;

/** The parameters that one translation wrote. */
final class Recording {
    private final byte[] mRecord;
    private final List<Write> mWrites;
    private final Map<String, List<byte[]>> mValues = new HashMap<>();

    Recording(byte[] record) {
        mRecord = record;
        mWrites = TrialLibrary.parse(record);
        mWrites.forEach(write ->
                mValues.computeIfAbsent(write.name(), name -> new ArrayList<>()).add(write.value()));
    }

    Set<String> names() {
        return mValues.keySet();
    }

    /**
     * Returns the names that another recording writes with other values or another number of times, and the
     * names whose order of writing differs.
     */
    Set<String> differences(byte[] otherRecord) {
        return Arrays.equals(mRecord, otherRecord) ? Set.of() : differences(new Recording(otherRecord));
    }

    private Set<String> differences(Recording other) {
        Set<String> names = new HashSet<>(mValues.keySet());
        names.addAll(other.mValues.keySet());
        names.removeIf(name -> isSame(mValues.get(name), other.mValues.get(name)));
        names.addAll(moved(order(names), other.order(names)));
        return names;
    }

    private static boolean isSame(List<byte[]> one, List<byte[]> other) {
        if (one == null || other == null || one.size() != other.size()) {
            return false;
        }
        for (int i = 0; i < one.size(); ++i) {
            if (!Arrays.equals(one.get(i), other.get(i))) {
                return false;
            }
        }
        return true;
    }

    // The names of the writes except the given ones.
    private List<String> order(Set<String> without) {
        return mWrites.stream().map(Write::name).filter(name -> !without.contains(name)).toList();
    }

    // Both lists have each name equally often. Names outside their longest common subsequence have moved.
    private static Set<String> moved(List<String> before, List<String> after) {
        if (before.equals(after)) {
            return Set.of();
        }
        int[][] longest = new int[before.size() + 1][after.size() + 1];
        for (int i = before.size() - 1; i >= 0; --i) {
            for (int j = after.size() - 1; j >= 0; --j) {
                longest[i][j] = before.get(i).equals(after.get(j)) ? longest[i + 1][j + 1] + 1
                        : Math.max(longest[i + 1][j], longest[i][j + 1]);
            }
        }
        Set<String> names = new HashSet<>();
        int j = 0;
        for (int i = 0; i < before.size(); ++i) {
            while (j < after.size() && longest[i][j] == longest[i][j + 1]
                    && !before.get(i).equals(after.get(j))) {
                ++j;
            }
            if (j < after.size() && before.get(i).equals(after.get(j))) {
                ++j;
            } else {
                names.add(before.get(i));
            }
        }
        return names;
    }
}
