package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterFormatter;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterTypes;

/** One parameter passed to the algorithm library, as bytes. */
public record Parameter(String section, String key, byte[] bytes) {
    boolean hasKeyOf(Parameter other) {
        return key.equals(other.key) && section.equals(other.section);
    }

    /** The section without the common prefix, and the key. */
    public String name() {
        return Handover.shortName(fullName());
    }

    /** The value, formatted for people. */
    public String text() {
        return ParameterFormatter.format(ParameterTypes.of(section, key), bytes);
    }

    /**
     * The value for programs: a number, a boolean, a string or a list of numbers; otherwise the same
     * text as text().
     */
    public Json json() {
        return Json.of(ParameterFormatter.json(ParameterTypes.of(section, key), bytes));
    }

    public String fullName() {
        return section + "/" + key;
    }

    public String type() {
        return ParameterTypes.of(section, key).text();
    }
}
