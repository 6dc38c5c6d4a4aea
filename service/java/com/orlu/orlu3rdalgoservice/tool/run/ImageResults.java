package com.orlu.orlu3rdalgoservice.tool.run;

import java.util.List;

/**
 * What the images of a run came to.
 *
 * @param files    a line on each file that was written
 * @param measures how near the outputs are to the clean photo, where that is known
 * @param noise    a line on how much noise went from each output
 * @param problems what is wrong with the outputs, if the algorithms were to write them
 */
public record ImageResults(List<String> files, List<NoiseMeasure.Measure> measures, List<String> noise,
        List<String> problems) {
    public static final ImageResults NONE = new ImageResults(
            List.of(), List.of(), List.of(), List.of());
}
