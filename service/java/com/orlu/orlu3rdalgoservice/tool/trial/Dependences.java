package com.orlu.orlu3rdalgoservice.tool.trial;

import com.google.gson.JsonArray;
import com.google.gson.JsonObject;

import java.util.ArrayList;
import java.util.List;
import java.util.Set;

/**
 * What the trials of one request found.
 *
 * @param all      one for each tag of each frame that translation asks for
 * @param unsteady parameters that differ from one translation to the next with nothing changed
 * @param trials   how many translations there were
 * @param seconds  that they took
 * @param problem  why they can't be relied on, "" when they can
 */
public record Dependences(
        List<Dependence> all, Set<String> unsteady, int trials, double seconds, String problem) {
    /** The name of the algorithm list among the parameters. */
    public static final String ALGORITHMS = TrialLibrary.ALGORITHMS;

    /** Nothing is known, for a reason. */
    public static Dependences unknown(String problem) {
        return new Dependences(List.of(), Set.of(), 0, 0, problem);
    }

    /** The tags that a parameter depends on, by tag and frame, also those on which it does only together. */
    public List<Dependence> of(String parameter) {
        return all.stream()
                .filter(tag -> tag.parameters().contains(parameter) || tag.together().contains(parameter))
                .toList();
    }

    /** What a frame's tag does; nothing when it was not asked for. */
    public List<Dependence> of(int frame, String tag) {
        return all.stream().filter(each -> each.frame() == frame && each.tag().equals(tag)).toList();
    }

    public JsonObject json() {
        JsonObject object = new JsonObject();
        object.addProperty("trials", trials);
        object.addProperty("seconds", seconds);
        object.addProperty("problem", problem);
        object.add("unsteady", Dependence.array(unsteady));
        JsonArray array = new JsonArray();
        all.forEach(tag -> array.add(tag.json()));
        object.add("tags", array);
        return object;
    }

    /** What json() made. */
    public static Dependences of(JsonObject object) {
        List<Dependence> all = new ArrayList<>();
        object.getAsJsonArray("tags").forEach(tag -> all.add(Dependence.of(tag.getAsJsonObject())));
        return new Dependences(all, Dependence.set(object.getAsJsonArray("unsteady")),
                object.get("trials").getAsInt(), object.get("seconds").getAsDouble(),
                object.get("problem").getAsString());
    }
}
