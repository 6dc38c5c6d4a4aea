package com.orlu.orlu3rdalgoservice.tool.tags;

import java.io.BufferedReader;
import java.io.IOException;
import java.io.InputStream;
import java.io.InputStreamReader;
import java.io.UncheckedIOException;
import java.nio.charset.StandardCharsets;
import java.util.HashMap;
import java.util.List;
import java.util.Map;

/** The numbers of tags that a dump prints by a name: the lines of enumerations.txt. */
public final class Enumerations {
    /** What a flag without a line of its own is printed as. */
    private static final List<String> FLAG = List.of("FALSE", "TRUE");
    private static final Map<String, List<String>> NAMES = load();

    private Enumerations() {
    }

    /** The number of a name, -1 for one that the tag does not know. */
    public static int number(String tag, String name) {
        return NAMES.getOrDefault(tag, FLAG).indexOf(name);
    }

    /** The names of a tag's numbers 0, 1, ...; none for a tag without a line. */
    public static List<String> names(String tag) {
        return NAMES.getOrDefault(tag, List.of());
    }

    private static Map<String, List<String>> load() {
        Map<String, List<String>> names = new HashMap<>();
        try (InputStream stream = Enumerations.class.getResourceAsStream("enumerations.txt");
                BufferedReader reader = new BufferedReader(
                        new InputStreamReader(stream, StandardCharsets.UTF_8))) {
            reader.lines().filter(line -> !line.startsWith("#")).forEach(line -> {
                List<String> words = List.of(line.split(" "));
                names.put(words.get(0), words.subList(1, words.size()));
            });
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
        return names;
    }
}
