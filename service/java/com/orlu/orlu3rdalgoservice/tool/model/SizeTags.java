package com.orlu.orlu3rdalgoservice.tool.model;

import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import java.util.regex.Pattern;

/** Finds the tags of a recording that hold sizes or places in an image. */
final class SizeTags {
    private static final Set<String> TYPES = Set.of("rect", "regions", "faces");
    private static final Pattern NAMES = Pattern.compile(
            "size|crop|region|rect|bounds|active.?array|faces|landmark", Pattern.CASE_INSENSITIVE);

    private SizeTags() {
    }

    /** Their names, of all frames. */
    static Set<String> of(List<JsonObject> frames) {
        Set<String> names = new TreeSet<>();
        for (JsonObject frame : frames) {
            for (String source : List.of("captureResult", "composition")) {
                for (Map.Entry<String, JsonElement> tag : frame.getAsJsonObject(source).entrySet()) {
                    boolean isPlace = tag.getValue() instanceof JsonObject value
                            && value.keySet().stream().anyMatch(TYPES::contains);
                    if (isPlace || NAMES.matcher(tag.getKey()).find()) {
                        names.add(tag.getKey());
                    }
                }
            }
        }
        return names;
    }
}
