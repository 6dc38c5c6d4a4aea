package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.tags.Table;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The algorithms that a request can ask for, or that the library adds. */
final class AlgorithmCatalogue {
    private static final String HELP =
            "Lists the algorithms that a request can ask for. Of one it says also when the library adds "
            + "it or takes it out, what changes when it is in the list, what is read back, whether the "
            + "stand-in runs it, and what became of it in each sample.";

    private AlgorithmCatalogue() {
    }

    static Catalogue catalogue() {
        return new Catalogue("algorithm", HELP, List.of("standIn"),
                entry -> entry.text("is"), AlgorithmCatalogue::entries);
    }

    private static List<Entry> entries() {
        Map<String, Map<String, List<String>>> rows = new LinkedHashMap<>();
        for (String[] row : Table.rows("algorithms.txt", 3)) {
            rows.computeIfAbsent(row[0], name -> new LinkedHashMap<>())
                    .computeIfAbsent(row[1], kind -> new ArrayList<>()).add(row[2]);
        }
        return rows.entrySet().stream().map(entry -> entry(entry.getKey(), entry.getValue())).toList();
    }

    private static Entry entry(String name, Map<String, List<String>> facts) {
        Map<String, String> fates = Found.fates(name);
        List<Map<String, String>> samples = new ArrayList<>();
        fates.forEach((sample, fate) -> samples.add(Ordered.of("sample", sample, "fate", fate)));
        return new Entry(name).with("is", String.join(" ", facts.getOrDefault("is", List.of())))
                .with("standIn", standIn(fates))
                .with("added", facts.getOrDefault("added", List.of()))
                .with("removed", facts.getOrDefault("removed", List.of()))
                .with("does", facts.getOrDefault("does", List.of()))
                .with("returns", facts.getOrDefault("returns", List.of()))
                .with("samples", samples);
    }

    private static String standIn(Map<String, String> fates) {
        if (fates.values().stream().anyMatch(fate -> fate.endsWith(" ran"))) {
            return "runs";
        }
        return fates.values().stream().anyMatch(fate -> fate.endsWith(" skipped"))
                ? "skips" : "in no sample";
    }
}
