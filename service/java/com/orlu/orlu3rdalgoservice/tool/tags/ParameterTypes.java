package com.orlu.orlu3rdalgoservice.tool.tags;

import java.io.BufferedReader;
import java.io.IOException;
import java.io.InputStream;
import java.io.InputStreamReader;
import java.io.UncheckedIOException;
import java.nio.charset.StandardCharsets;
import java.util.HashMap;
import java.util.Map;

/** What each known parameter's bytes are: the lines of parameters.txt, read when the first is asked for. */
public final class ParameterTypes {
    private static final String PREFIX = "orlu.algo.";
    private static final Map<String, ParameterType> TYPES = load();

    private ParameterTypes() {
    }

    /** The type of a parameter; UNKNOWN for one that has no row. */
    public static ParameterType of(String section, String key) {
        return TYPES.getOrDefault(section + " " + key, ParameterType.UNKNOWN);
    }

    private static Map<String, ParameterType> load() {
        Map<String, ParameterType> types = new HashMap<>();
        try (InputStream stream = ParameterTypes.class.getResourceAsStream("parameters.txt");
                BufferedReader reader = new BufferedReader(
                        new InputStreamReader(stream, StandardCharsets.UTF_8))) {
            for (String line = reader.readLine(); line != null; line = reader.readLine()) {
                if (!line.isBlank() && !line.startsWith("#")) {
                    String[] columns = line.split(" +");
                    types.put(PREFIX + columns[0] + " " + columns[1], ParameterType.valueOf(columns[2]));
                }
            }
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
        return types;
    }
}
