package com.orlu.orlu3rdalgoservice.tool.model;

import java.util.List;

/**
 * The algorithm library's report on its work for a request.
 *
 * @param ran          the algorithms that did something, in their order
 * @param skipped      requested algorithms that did nothing: unknown, or without work
 * @param milliseconds the duration of the work
 * @param frames       its measurements of each frame; empty if it made none
 */
public record AlgorithmPass(List<String> ran, List<String> skipped, double milliseconds, List<Frame> frames) {
    /**
     * The measurements of one frame.
     *
     * @param sharpness a score, larger is sharper; NaN if not measured
     * @param shift     {x, y} in pixels against the base frame; null if not measured
     * @param kept      whether the frame went into the result
     */
    public record Frame(double sharpness, int[] shift, boolean kept) {
    }
}
