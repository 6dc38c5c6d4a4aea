package com.orlu.orlu3rdalgoservice.tool.request;

import java.util.Collection;
import java.util.Locale;

/** Finds what somebody may have meant who wrote a name that is not known. */
final class NearestName {
    private static final int LONGEST_NAME = 100;

    private NearestName() {
    }

    /** "; did you mean ...?" with the nearest of the names; empty when none is near. */
    static String hint(String word, Collection<String> names) {
        String nearest = of(word, names);
        return nearest == null ? "" : "; did you mean \"" + nearest + "\"?";
    }

    /** The nearest name, null when none is near: about one letter in four may be another. */
    static String of(String word, Collection<String> names) {
        if (word.isEmpty() || word.length() > LONGEST_NAME) {
            return null;
        }
        String nearest = null;
        int least = Integer.MAX_VALUE;
        for (String name : names) {
            int distance = distanceOfNames(word.toLowerCase(Locale.ROOT), name.toLowerCase(Locale.ROOT));
            if (distance < least) {
                nearest = name;
                least = distance;
            }
        }
        return nearest;
    }

    // Sections of tags are easily mistaken or left out: the part behind the last dot counts on its own.
    private static int distanceOfNames(String word, String name) {
        int whole = near(word, name);
        String lastOfWord = word.substring(word.lastIndexOf('.') + 1);
        String lastOfName = name.substring(name.lastIndexOf('.') + 1);
        int last = name.length() > lastOfName.length() ? near(lastOfWord, lastOfName) : Integer.MAX_VALUE;
        return Math.min(whole, last == Integer.MAX_VALUE ? last : last + 1);
    }

    private static int near(String word, String name) {
        int most = Math.max(1, (word.length() + 1) / 4);
        int distance = Math.abs(word.length() - name.length()) > most ? most + 1 : distance(word, name);
        return distance <= most ? distance : Integer.MAX_VALUE;
    }

    // How many letters were left out, put in, replaced, or swapped with the next one.
    private static int distance(String word, String name) {
        int[][] steps = new int[word.length() + 1][name.length() + 1];
        for (int i = 0; i <= word.length(); ++i) {
            for (int j = 0; j <= name.length(); ++j) {
                if (i == 0 || j == 0) {
                    steps[i][j] = i + j;
                    continue;
                }
                int replaced = word.charAt(i - 1) == name.charAt(j - 1) ? 0 : 1;
                steps[i][j] = Math.min(steps[i - 1][j - 1] + replaced,
                        1 + Math.min(steps[i - 1][j], steps[i][j - 1]));
                if (i > 1 && j > 1 && word.charAt(i - 1) == name.charAt(j - 2)
                        && word.charAt(i - 2) == name.charAt(j - 1)) {
                    steps[i][j] = Math.min(steps[i][j], steps[i - 2][j - 2] + 1);
                }
            }
        }
        return steps[word.length()][name.length()];
    }
}
