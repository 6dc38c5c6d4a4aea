package com.orlu.orlu3rdalgoservice.tool.text;

import java.io.IOException;
import java.nio.file.DirectoryStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Collection;
import java.util.Collections;
import java.util.List;
import java.util.Locale;

/** Finds the known word that is most similar to a mistyped word. */
public final class NearestWord {
    /** Shorter prefixes match too many words. */
    private static final int LEAST_BEGINNING = 3;
    private static final int LONGEST_WORD = 100;

    private NearestWord() {
    }

    /** Returns the nearest known word (the first, in a tie); null if none is near. */
    public static String of(String word, Collection<String> known) {
        String nearest = null;
        // A third of the letters may be wrong, at most four.
        int least = word.length() > LONGEST_WORD ? 0 : Math.min(4, word.length() / 3) + 1;
        String lower = word.toLowerCase(Locale.ROOT);
        for (String candidate : known) {
            int distance = distance(lower, candidate.toLowerCase(Locale.ROOT), least);
            if (distance < least) {
                nearest = candidate;
                least = distance;
            }
        }
        return nearest;
    }

    /** Returns " (did you mean NEAREST?)"; an empty text if no known word is near. */
    public static String question(String word, Collection<String> known) {
        String nearest = of(word, known);
        return nearest == null ? "" : " (did you mean " + nearest + "?)";
    }

    /** Like question(), for a missing request file: suggests the nearest *.json file in the same folder. */
    public static String questionOnFile(Path file) {
        String ending = ".json";
        List<String> names = new ArrayList<>();
        Path folder = file.getParent() == null ? Path.of("") : file.getParent();
        try (DirectoryStream<Path> files = Files.newDirectoryStream(folder, "*" + ending)) {
            files.forEach(other -> names.add(other.getFileName().toString().replace(ending, "")));
        } catch (IOException e) {
            return "";
        }
        Collections.sort(names);
        String nearest = of(file.getFileName().toString().replace(ending, ""), names);
        return nearest == null ? "" : " (did you mean " + folder.resolve(nearest + ending) + "?)";
    }

    // People omit or confuse the section of a tag, so the parts after the last dots are also compared.
    private static int distance(String word, String candidate, int least) {
        int whole = distanceOfParts(word, candidate, least);
        int section = candidate.lastIndexOf('.') + 1;
        return section == 0 ? whole : Math.min(whole, 1 + distanceOfParts(
                word.substring(word.lastIndexOf('.') + 1), candidate.substring(section), least - 1));
    }

    // Returns the number of edits; a missing end of `word` counts as one edit. The result is exact only if it
    // is below `least`.
    private static int distanceOfParts(String word, String candidate, int least) {
        if (word.length() >= LEAST_BEGINNING && candidate.startsWith(word)) {
            return Math.min(1, candidate.length() - word.length());
        }
        return Math.abs(word.length() - candidate.length()) >= least ? least : edits(word, candidate);
    }

    // Returns the number of letters to insert, delete, change, or swap with their neighbours.
    private static int edits(String word, String candidate) {
        int[] last = new int[candidate.length() + 1];
        int[] beforeLast = last;
        for (int j = 0; j < last.length; ++j) {
            last[j] = j;
        }
        for (int i = 1; i <= word.length(); ++i) {
            int[] row = new int[last.length];
            row[0] = i;
            for (int j = 1; j < row.length; ++j) {
                boolean isSame = word.charAt(i - 1) == candidate.charAt(j - 1);
                row[j] = Math.min(Math.min(last[j], row[j - 1]) + 1, last[j - 1] + (isSame ? 0 : 1));
                if (i > 1 && j > 1 && word.charAt(i - 1) == candidate.charAt(j - 2)
                        && word.charAt(i - 2) == candidate.charAt(j - 1)) {
                    row[j] = Math.min(row[j], beforeLast[j - 2] + 1);
                }
            }
            beforeLast = last;
            last = row;
        }
        return last[candidate.length()];
    }
}
