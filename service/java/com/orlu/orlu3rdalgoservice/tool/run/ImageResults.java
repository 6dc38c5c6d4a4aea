package com.orlu.orlu3rdalgoservice.tool.run;

import java.util.List;

/**
 * Results about the images of a run.
 *
 * @param files    a line about each written file
 * @param measures the similarity of outputs to the clean photo, where known
 * @param noise    a line for each element of `measures`; empty if the request has no noise
 * @param problems a line for each output that can't be read, with the reason
 */
public record ImageResults(List<String> files, List<NoiseMeasure> measures, List<String> noise,
        List<String> problems) {
    public static final ImageResults NONE = new ImageResults(
            List.of(), List.of(), List.of(), List.of());
}
