package com.orlu.orlu3rdalgoservice.tool.tags;

import java.util.List;

/** The algorithm names that the library, the stand-in and the samples use. algorithms.txt lists them. */
public final class AlgorithmNames {
    private AlgorithmNames() {
    }

    public static List<String> all() {
        return Table.firstWords("algorithms.txt");
    }
}
