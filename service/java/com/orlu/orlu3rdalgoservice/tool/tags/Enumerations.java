package com.orlu.orlu3rdalgoservice.tool.tags;

import java.util.HashMap;
import java.util.List;
import java.util.Map;

/** The names that a dump prints for values of tags: the rows of enumerations.txt. */
public final class Enumerations {
    /** The names of a flag's values. Flags have no rows in enumerations.txt. */
    private static final List<String> FLAG = List.of("FALSE", "TRUE");
    private static final Map<String, List<String>> NAMES = new HashMap<>();

    static {
        Table.rows("enumerations.txt", 2).forEach(row -> NAMES.put(row[0], List.of(row[1].split(" "))));
    }

    private Enumerations() {
    }

    /** Returns the tag's value with this name, or -1. A tag without a row is treated as a flag. */
    public static int number(String tag, String name) {
        return NAMES.getOrDefault(tag, FLAG).indexOf(name);
    }

    /** Returns the names of a tag's values 0, 1, ...; an empty list for a tag without a row. */
    public static List<String> names(String tag) {
        return NAMES.getOrDefault(tag, List.of());
    }
}
