package com.orlu.orlu3rdalgoservice.tool.catalogue;

import java.io.IOException;
import java.io.InputStream;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Stream;

/**
 * A request file of the folder samples.
 *
 * @param name    its file's, without .json
 * @param request what it holds
 */
record Sample(String name, Map<String, Object> request) {
    private static final String SUFFIX = ".json";
    private static final List<String> STORES = List.of("captureResult", "composition");

    /** All, by name. */
    static List<Sample> all() {
        List<Sample> samples = new ArrayList<>();
        try (Stream<Path> files = Files.list(folder())) {
            for (Path file : files.filter(each -> each.toString().endsWith(SUFFIX)).toList()) {
                samples.add(read(file));
            }
            samples.sort(Comparator.comparing(Sample::name));
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
        return samples;
    }

    /** The folder that they lie in, beside the launcher. */
    static Path folder() {
        return Path.of(System.getProperty("orlu.launcher")).resolveSibling("samples");
    }

    private static Sample read(Path file) throws IOException {
        try (InputStream stream = Files.newInputStream(file)) {
            String name = file.getFileName().toString();
            return new Sample(name.substring(0, name.length() - SUFFIX.length()), map(Json.read(stream)));
        }
    }

    @SuppressWarnings("unchecked")
    private static Map<String, Object> map(Object value) {
        return value instanceof Map ? (Map<String, Object>) value : Map.of();
    }

    private static List<?> list(Object value) {
        return value instanceof List<?> list ? list : List.of();
    }

    String about() {
        return (String) request.getOrDefault("about", "");
    }

    List<String> algorithms() {
        return list(request.get("algorithms")).stream().map(String.class::cast).toList();
    }

    private Map<String, Object> frameSet() {
        return map(request.get("frames"));
    }

    private List<?> each() {
        return list(request.get("frames") instanceof List<?> frames ? frames : frameSet().get("each"));
    }

    int frames() {
        return frameSet().get("count") instanceof Number count ? count.intValue()
                : Math.max(1, each().size());
    }

    /** The images of a part, "inputs" or "outputs", each kind once: "7 NV21, shared". */
    List<String> images(String part) {
        Map<String, Integer> counts = new LinkedHashMap<>();
        if (request.get(part) instanceof List<?> images) {
            images.forEach(image -> counts.merge(text(map(image)), 1, Integer::sum));
        } else {
            Map<String, Object> image = map(request.get(part));
            int perFrame = image.get("perFrame") instanceof Number number ? number.intValue() : 1;
            counts.put(text(image), frames() * perFrame);
        }
        return counts.entrySet().stream().map(entry -> entry.getValue() + " " + entry.getKey()).toList();
    }

    private static String text(Map<String, Object> image) {
        StringBuilder text = new StringBuilder(image.get("format") + ", "
                + image.getOrDefault("memory", "shared"));
        if (image.containsKey("stride")) {
            text.append(", stride ").append(image.get("stride"));
        }
        if (image.containsKey("width")) {
            text.append(", %s x %s".formatted(image.get("width"), image.get("height")));
        }
        return text.toString();
    }

    /** Every tag that it sets for some frame, with the values of the first frame that has one of its own. */
    Map<String, Object> tags() {
        Map<String, Object> tags = new LinkedHashMap<>();
        List<Object> frames = new ArrayList<>(List.of(map(frameSet().get("common"))));
        frames.addAll(each());
        for (Object frame : frames) {
            for (String store : STORES) {
                map(map(frame).get(store)).forEach(tags::putIfAbsent);
            }
        }
        if (request.containsKey("algorithms")) {
            tags.putIfAbsent("orlu.control.algoType", request.get("algorithms"));
        }
        if (request.containsKey("fullAsync")) {
            tags.putIfAbsent("isFullAsync", request.get("fullAsync"));
        }
        return tags;
    }
}
