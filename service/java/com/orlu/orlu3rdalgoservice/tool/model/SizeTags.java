package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.List;
import java.util.Set;
import java.util.TreeSet;
import java.util.regex.Pattern;

/** Finds the tags of a run that hold sizes or places in an image. */
final class SizeTags {
    private static final List<String> TYPES = List.of("rect", "regions", "faces");
    private static final Pattern NAMES = Pattern.compile(
            "size|crop|region|rect|bounds|active.?array|faces|landmark", Pattern.CASE_INSENSITIVE);

    private SizeTags() {
    }

    /** The names of these tags in all frames. */
    static Set<String> of(Run run) throws MistakeException {
        Set<String> names = new TreeSet<>();
        for (Json frame : run.frames()) {
            for (String source : List.of("captureResult", "composition")) {
                frame.get(source).members().forEach((name, value) -> {
                    if (NAMES.matcher(name).find() || TYPES.stream().anyMatch(value::has)) {
                        names.add(name);
                    }
                });
            }
        }
        return names;
    }
}
