package com.orlu.orlu3rdalgoservice.tool.tags;

import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Map;

/**
 * Facts about a tag besides its type.
 *
 * @param unit    "ns", "px", ...; "flag" for zero or not zero, "code" for an enumeration, "-" for none
 * @param meaning one or two sentences
 * @param values  the known values and their meanings
 */
public record TagFacts(String unit, String meaning, List<Value> values) {
    private static final String NO_UNIT = "-";
    private static final Map<String, TagFacts> TAGS = load();

    /** A value in the notation of values.txt, and its meaning. */
    public record Value(String value, String meaning) {
    }

    /** Returns a tag's facts; null if the tag is not in tags.txt. */
    public static TagFacts of(String tag) {
        return TAGS.get(tag);
    }

    public boolean hasUnit() {
        return !unit.equals(NO_UNIT);
    }

    private static Map<String, TagFacts> load() {
        Map<String, TagFacts> tags = new HashMap<>();
        for (String[] row : Table.rows("tags.txt", 3)) {
            tags.put(row[0], new TagFacts(row[1], row[2], new ArrayList<>()));
        }
        for (String[] row : Table.rows("values.txt", 3)) {
            tags.get(row[0]).values().add(new Value(row[1], row[2]));
        }
        return tags;
    }
}
