package com.orlu.orlu3rdalgoservice.tool.trial;

import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

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
    JsonObject json() {
        JsonObject object = new JsonObject();
        object.addProperty("frame", frame);
        object.addProperty("source", source);
        object.addProperty("tag", tag);
        object.addProperty("asked", asked);
        object.add("parameters", array(parameters));
        object.add("together", array(together));
        return object;
    }

    static Dependence of(JsonObject object) {
        return new Dependence(object.get("frame").getAsInt(), object.get("source").getAsString(),
                object.get("tag").getAsString(), object.get("asked").getAsString(),
                set(object.getAsJsonArray("parameters")), set(object.getAsJsonArray("together")));
    }

    static JsonArray array(Set<String> names) {
        JsonArray array = new JsonArray();
        new TreeSet<>(names).forEach(array::add);
        return array;
    }

    static Set<String> set(JsonArray array) {
        Set<String> names = new TreeSet<>();
        for (JsonElement name : array) {
            names.add(name.getAsString());
        }
        return names;
    }
}
