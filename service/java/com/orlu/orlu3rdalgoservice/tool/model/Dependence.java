package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.json.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.Map;
import java.util.Set;
import java.util.TreeSet;

/**
 * What one tag of one frame does.
 *
 * @param frame      from 0
 * @param source     "composition" or "captureResult": where it is or, if it is absent, where trials put it
 * @param tag        its name
 * @param asked      the class that the capture result is asked for it as, "" when it never is
 * @param parameters what changes when it does: "section/key", or "algorithms" for the algorithm list
 * @param together   what only changes when the tag does in all frames at once
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
