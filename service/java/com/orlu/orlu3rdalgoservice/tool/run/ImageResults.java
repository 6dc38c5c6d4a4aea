package com.orlu.orlu3rdalgoservice.tool.run;

import java.util.List;

/**
 * The results about a run's images.
 *
 * @param files    a line about each written file
 * @param measures the similarity of outputs to the clean photo, where known
 * @param noise    a line about the noise removed from each output
 * @param problems what is wrong with the outputs, if the algorithms had to write them
 */
public record ImageResults(List<String> files, List<NoiseMeasure> measures, List<String> noise,
        List<String> problems) {
    public static final ImageResults NONE = new ImageResults(
            List.of(), List.of(), List.of(), List.of());
}
