package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.Map;
import java.util.Set;
import java.util.TreeSet;

/**
 * The parameters that depend on one tag of one frame.
 *
 * @param source     "composition" or "captureResult": where the tag is, or where trials put an absent tag
 * @param asked      the class that the library requests from the capture result; "" if it requests none
 * @param parameters "section/key" of each parameter, or "algorithms" for the algorithm list
 * @param together   parameters that change only if the tag changes in all frames
 */
public record Dependence(int frame, String source, String tag, String asked, Set<String> parameters,
        Set<String> together) {
    Map<String, Object> json() {
        return JsonWriter.object("frame", frame, "source", source, "tag", tag, "asked", asked,
                "parameters", new TreeSet<>(parameters), "together", new TreeSet<>(together));
    }

    static Dependence of(Json json) throws MistakeException {
        return new Dependence(json.require("frame").integer(0, Integer.MAX_VALUE),
                json.require("source").string(), json.require("tag").string(), json.require("asked").string(),
                new TreeSet<>(json.require("parameters").strings()),
                new TreeSet<>(json.require("together").strings()));
    }
}
