package com.orlu.orlu3rdalgoservice.tool.check;

import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;

import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

/** Summarises a request file in one line. */
final class Understood {
    private Understood() {
    }

    /** The images are those of the request, with sizes. */
    static String line(RequestFile request, List<ImagePlan> inputs, List<ImagePlan> outputs) {
        int frames = request.frames().frames().size();
        return request.file() + ": ok: " + RequestChecker.counted(frames, "frame")
                + ", in " + images(inputs) + ", out " + images(outputs) + ", " + algorithms(request);
    }

    private static String images(List<ImagePlan> images) {
        Map<String, Integer> counts = new LinkedHashMap<>();
        for (ImagePlan image : images) {
            counts.merge(image.format() + " " + image.width() + "x" + image.height()
                    + (image.file() == null ? "" : " of a file"), 1, Integer::sum);
        }
        return counts.isEmpty() ? "nothing" : counts.entrySet().stream()
                .map(entry -> (entry.getValue() == 1 ? "" : entry.getValue() + " ") + entry.getKey())
                .collect(Collectors.joining(" + "));
    }

    private static String algorithms(RequestFile request) {
        Object asked = request.frames().frames().isEmpty() ? null
                : request.frames().frames().get(0).composition().get("orlu.control.algoType");
        boolean asksFor = asked instanceof String[] names && names.length > 0;
        return asksFor ? String.join(" ", (String[]) asked) : "no algorithms";
    }
}
