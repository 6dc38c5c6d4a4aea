package com.orlu.orlu3rdalgoservice.tool.model;

import java.util.List;

/**
 * What the algorithm library reports of the work it did for a request.
 *
 * @param ran          the algorithms that did something, in their order
 * @param skipped      handed on but left alone knowingly: not known to it, or with nothing to do
 * @param milliseconds that the work took
 * @param frames       what it found out about each frame, empty when it looked at none
 */
public record AlgorithmPass(List<String> ran, List<String> skipped, double milliseconds, List<Frame> frames) {
    /**
     * One frame's judgement.
     *
     * @param sharpness a score, larger is sharper; NaN when it was not taken
     * @param shift     {x, y} in pixels against the base frame, null when it was not measured
     * @param kept      whether the frame went into the result
     */
    public record Frame(double sharpness, int[] shift, boolean kept) {
    }
}
