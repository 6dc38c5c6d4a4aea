package com.orlu.orlu3rdalgoservice.tool.catalogue;

import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.tags.AlgorithmNames;
import com.orlu.orlu3rdalgoservice.tool.tags.Enumerations;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;
import com.orlu.orlu3rdalgoservice.tool.tags.TagFacts;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The JSON schema of request files, for completion and descriptions in editors. */
public final class RequestSchema {
    private static final String FILE = "request.schema.json";
    private static final String DEFINITIONS = "#/definitions/";

    private RequestSchema() {
    }

    /** Returns the schema file beside this class, with tags, algorithms and formats added. */
    public static Map<String, Object> of() throws IOException, MistakeException {
        Map<String, Object> schema;
        try (InputStream stream = RequestSchema.class.getResourceAsStream(FILE)) {
            String text = new String(stream.readAllBytes(), StandardCharsets.UTF_8);
            schema = new LinkedHashMap<>(Json.parse(FILE, 1, text).members());
        }
        Map<String, Object> definitions = opened(schema, "definitions");
        definitions.put("algorithm", algorithm());
        definitions.put("format", Map.of("enum", PixelFormat.names()));
        Map<String, Object> reported = opened(opened(definitions, "captureResult"), "properties");
        Map<String, Object> composed = opened(opened(definitions, "composition"), "properties");
        for (String tag : TagTable.names()) {
            reported.put(tag, described(tag, reference(TagTable.typeOf(tag).name())));
            composed.put(tag, described(tag, Map.of("anyOf",
                    List.of(reference(TagTable.typeOf(tag).name()), reference("typedValue")))));
        }
        return schema;
    }

    // Replaces a member, which must be an object, by a mutable copy and returns the copy.
    private static Map<String, Object> opened(Map<String, Object> object, String name)
            throws MistakeException {
        Map<String, Object> copy = new LinkedHashMap<>(((Json) object.get(name)).members());
        object.put(name, copy);
        return copy;
    }

    private static Map<String, Object> reference(String definition) {
        return Map.of("$ref", DEFINITIONS + definition);
    }

    // Unknown names are valid, because another algorithm library may have further algorithms.
    private static Map<String, Object> algorithm() {
        return Map.of("anyOf", List.of(Map.of("enum", AlgorithmNames.all()), Map.of("type", "string")));
    }

    // Returns the type with the tag's description. Wraps a reference in "allOf", because JSON schema ignores
    // a description beside a reference.
    private static Map<String, Object> described(String tag, Map<String, Object> type) {
        Map<String, Object> property = new LinkedHashMap<>();
        property.put("description", description(tag));
        if (type.containsKey("$ref")) {
            property.put("allOf", List.of(type));
        } else {
            property.putAll(type);
        }
        return property;
    }

    private static String description(String tag) {
        TagFacts facts = TagFacts.of(tag);
        TagType type = TagTable.typeOf(tag);
        StringBuilder text = new StringBuilder(facts.meaning()).append(" (").append(type.name());
        text.append(facts.hasUnit() ? ", " + facts.unit() : "").append(')');
        List<String> names = Enumerations.names(tag);
        for (int i = 0; i < names.size(); ++i) {
            text.append(i == 0 ? " " : ", ").append(i).append(' ').append(names.get(i));
        }
        for (TagFacts.Value value : facts.values()) {
            text.append("\n").append(value.value()).append(": ").append(value.meaning());
        }
        return text.toString();
    }
}
