package com.orlu.orlu3rdalgoservice.tool.tags;

import java.util.HashMap;
import java.util.Map;

/** The types and sizes of the parameters in parameters.txt. */
public final class ParameterTypes {
    private static final String PREFIX = "orlu.algo.";
    private static final int COLUMNS = 5;
    private static final Map<String, ParameterType> TYPES = new HashMap<>();
    private static final Map<String, Integer> BYTES = new HashMap<>();

    static {
        Table.rows("parameters.txt", COLUMNS).forEach(row -> {
            TYPES.put(PREFIX + row[0] + " " + row[1], ParameterType.valueOf(row[2]));
            if (!row[3].equals("*")) {
                BYTES.put(PREFIX + row[0] + " " + row[1], Integer.valueOf(row[3]));
            }
        });
    }

    private ParameterTypes() {
    }

    /** Returns the type of a parameter; UNKNOWN if parameters.txt does not list the parameter. */
    public static ParameterType of(String section, String key) {
        return TYPES.getOrDefault(section + " " + key, ParameterType.UNKNOWN);
    }

    /** Returns the size of a parameter, in bytes; -1 if it is unlisted or depends on the request. */
    public static int bytes(String section, String key) {
        return BYTES.getOrDefault(section + " " + key, -1);
    }
}
