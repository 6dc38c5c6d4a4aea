package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;

/**
 * The results of the trials of one request.
 *
 * @param all      the dependences: one for each tag tested, per frame and store (composition, capture result)
 * @param unsteady parameters whose values differ between translations of the unchanged request
 * @param trials   the number of translations
 * @param seconds  the duration of all translations
 * @param problem  why the results are unreliable; "" if they are reliable
 */
public record Dependences(
        List<Dependence> all, Set<String> unsteady, int trials, double seconds, String problem) {
    /** The name that stands for the algorithm list in sets of parameters. */
    public static final String ALGORITHMS = "algorithms";

    public static Dependences unknown(String problem) {
        return new Dependences(List.of(), Set.of(), 0, 0, problem);
    }

    /**
     * Returns the tags that a parameter depends on, sorted by tag, then frame. Includes tags that have an
     * effect only if they change in all frames at once.
     */
    public List<Dependence> of(String parameter) {
        return all.stream()
                .filter(tag -> tag.parameters().contains(parameter) || tag.together().contains(parameter))
                .toList();
    }

    /** Returns the dependences on a frame's tag; an empty list if translation did not read the tag. */
    public List<Dependence> of(int frame, String tag) {
        return all.stream().filter(each -> each.frame() == frame && each.tag().equals(tag)).toList();
    }

    public Map<String, Object> json() {
        return JsonWriter.object("trials", trials, "seconds", seconds, "problem", problem,
                "unsteady", new TreeSet<>(unsteady), "tags", all.stream().map(Dependence::json).toList());
    }

    private static Dependences of(Json json) throws MistakeException {
        List<Dependence> all = new ArrayList<>();
        for (Json tag : json.require("tags").list()) {
            all.add(Dependence.of(tag));
        }
        return new Dependences(all, new TreeSet<>(json.require("unsteady").strings()),
                json.require("trials").integer(0, Integer.MAX_VALUE), json.require("seconds").real(),
                json.require("problem").string());
    }

    /** Writes the trials' results for several requests, one line each. */
    public static void write(Path file, List<Dependences> requests) throws IOException {
        Files.write(file, requests.stream().map(found -> JsonWriter.line(found.json())).toList());
    }

    public static List<Dependences> read(Path file) throws IOException {
        List<Dependences> requests = new ArrayList<>();
        for (String line : Files.readAllLines(file)) {
            try {
                requests.add(of(Json.parse(file.toString(), requests.size() + 1, line)));
            } catch (MistakeException e) {
                throw new IOException(e.getMessage(), e);
            }
        }
        return requests;
    }
}
