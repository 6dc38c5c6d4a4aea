package com.orlu.orlu3rdalgoservice.tool.run;

import java.util.List;

/**
 * Results on the images of a run.
 *
 * @param files    a line about each written file
 * @param measures the similarity of outputs to the clean photo, where known
 * @param noise    a line about the noise removed from each output
 * @param problems problems of the outputs that the algorithms should have written
 */
public record ImageResults(List<String> files, List<NoiseMeasure> measures, List<String> noise,
        List<String> problems) {
    public static final ImageResults NONE = new ImageResults(
            List.of(), List.of(), List.of(), List.of());
}
