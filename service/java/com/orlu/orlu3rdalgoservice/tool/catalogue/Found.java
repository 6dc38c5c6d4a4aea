package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.tags.Table;

import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeMap;
import java.util.TreeSet;
import java.util.stream.Collectors;

/** What scripts/make_catalogue.py found by trial and in the source: the rows of found.txt. */
final class Found {
    /** What stands among a tag's parameters when it changes most of them. */
    static final String MOST = "*";
    /** What the algorithm list is called among the parameters. */
    static final String ALGORITHMS = "algorithms";

    private static final Found ALL = new Found();

    // By kind of row, and then by its first name: what follows, in order.
    private final Map<String, Map<String, Set<String>>> mRows = new TreeMap<>();

    private Found() {
        for (String[] row : Table.rows("/com/orlu/orlu3rdalgoservice/tool/catalogue/found.txt", 3)) {
            add(row[0], row[1], row[2]);
            if (row[0].equals("depends")) {
                add("of", row[2], row[1]);
            }
        }
    }

    private void add(String kind, String name, String rest) {
        mRows.computeIfAbsent(kind, key -> new TreeMap<>())
                .computeIfAbsent(name, key -> new TreeSet<>()).add(rest);
    }

    private static List<String> rows(String kind, String name) {
        return List.copyOf(ALL.mRows.getOrDefault(kind, Map.of()).getOrDefault(name, Set.of()));
    }

    /** The parameters that change with a tag, "algorithms" for the list; MOST is no name. */
    static List<String> parametersOf(String tag) {
        return rows("depends", tag).stream().filter(name -> !name.equals(MOST)).collect(Collectors.toList());
    }

    /** Whether a tag changes most parameters of some request. */
    static boolean changesMost(String tag) {
        return rows("depends", tag).contains(MOST);
    }

    /** The tags that change a parameter, or the algorithm list. */
    static List<String> tagsOf(String parameter) {
        return rows("of", parameter);
    }

    /** Functions with their files: who asks for a tag. */
    static List<String> readersOf(String tag) {
        return places("reads", tag);
    }

    /** Who puts a tag back into a composition. */
    static List<String> puttersOf(String tag) {
        return places("puts", tag);
    }

    /** Who hands a parameter over. */
    static List<String> writersOf(String parameter) {
        return places("writes", parameter);
    }

    /** Who reads a parameter back. */
    static List<String> returnersOf(String parameter) {
        return places("returns", parameter);
    }

    /** What a parameter is where no tag is there, in all kinds of requests that were tried. */
    static List<String> absentValues(String parameter) {
        return rows("absent", parameter);
    }

    /** What became of an algorithm: by sample, words such as "asked removed". */
    static Map<String, String> fates(String algorithm) {
        Map<String, String> fates = new LinkedHashMap<>();
        for (String row : rows("algorithm", algorithm)) {
            String[] words = row.split(" ", 2);
            fates.put(words[0], words[1]);
        }
        return fates;
    }

    // "updateGra (metadata_updater_capture_features.cpp)"
    private static List<String> places(String kind, String name) {
        return rows(kind, name).stream().map(row -> row.replaceFirst(" jni/(.*)", " ($1)"))
                .collect(Collectors.toList());
    }
}
