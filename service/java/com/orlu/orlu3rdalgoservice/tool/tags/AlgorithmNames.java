package com.orlu.orlu3rdalgoservice.tool.tags;

import java.util.List;

/** The names of algorithms in the library, the stand-in and the samples, as listed in algorithms.txt. */
public final class AlgorithmNames {
    private AlgorithmNames() {
    }

    public static List<String> all() {
        return Table.firstWords("algorithms.txt");
    }
}
