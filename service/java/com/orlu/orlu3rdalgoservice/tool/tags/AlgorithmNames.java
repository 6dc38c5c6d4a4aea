package com.orlu.orlu3rdalgoservice.tool.tags;

import java.util.List;

/** The algorithms that the library, the stand-in or a sample knows: the names in algorithms.txt. */
public final class AlgorithmNames {
    private AlgorithmNames() {
    }

    public static List<String> all() {
        return Table.firstWords("algorithms.txt");
    }
}
