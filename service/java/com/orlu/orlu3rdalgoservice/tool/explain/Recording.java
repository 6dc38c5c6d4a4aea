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
    /** The offset of each write in the record; the last element is the record's size. */
    private final int[] mStarts;

    Recording(byte[] record) {
        mRecord = record;
        mStarts = TrialLibrary.starts(record);
    }

    /**
     * Compares this translation with another one. Returns the names of the parameters that the two wrote with
     * different values, a different number of times, or in a different order.
     */
    Set<String> differences(byte[] otherRecord) {
        return Arrays.equals(mRecord, otherRecord) ? Set.of() : differences(new Recording(otherRecord));
    }

    // Skips the equal writes at both ends, because a trial changes only a few of several hundred writes.
    // Decodes all writes only if their order differs.
    private Set<String> differences(Recording other) {
        int most = Math.min(count(), other.count());
        int head = 0;
        while (head < most && isSame(head, other, head)) {
            ++head;
        }
        int tail = 0;
        while (tail < most - head && isSame(count() - 1 - tail, other, other.count() - 1 - tail)) {
            ++tail;
        }
        List<Write> before = writes(head, count() - tail);
        List<Write> after = other.writes(head, other.count() - tail);
        Set<String> names = changed(values(before), values(after));
        if (!order(before, names).equals(order(after, names))) {
            names.addAll(moved(order(writes(0, count()), names),
                    order(other.writes(0, other.count()), names)));
        }
        return names;
    }

    private int count() {
        return mStarts.length - 1;
    }

    private List<Write> writes(int from, int to) {
        return TrialLibrary.parse(mRecord, mStarts[from], mStarts[to]);
    }

    private boolean isSame(int write, Recording other, int otherWrite) {
        return Arrays.equals(mRecord, mStarts[write], mStarts[write + 1],
                other.mRecord, other.mStarts[otherWrite], other.mStarts[otherWrite + 1]);
    }

    private static Map<String, List<byte[]>> values(List<Write> writes) {
        Map<String, List<byte[]>> values = new HashMap<>();
        writes.forEach(write ->
                values.computeIfAbsent(write.name(), name -> new ArrayList<>()).add(write.value()));
        return values;
    }

    private static Set<String> changed(Map<String, List<byte[]>> before, Map<String, List<byte[]>> after) {
        Set<String> names = new HashSet<>(before.keySet());
        names.addAll(after.keySet());
        names.removeIf(name -> isSame(before.get(name), after.get(name)));
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

    // Returns the names of the writes, except those in `without`.
    private static List<String> order(List<Write> writes, Set<String> without) {
        return writes.stream().map(Write::name).filter(name -> !without.contains(name)).toList();
    }

    // Returns the names that have moved: those outside the longest common subsequence. The lists contain each
    // name equally often, but in different orders.
    private static Set<String> moved(List<String> before, List<String> after) {
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
