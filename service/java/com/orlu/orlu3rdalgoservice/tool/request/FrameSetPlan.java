package com.orlu.orlu3rdalgoservice.tool.request;

import java.util.List;

/**
 * The frames of a request and their common values.
 *
 * @param maxShift largest random shift, in pixels to each side
 * @param seed     seed of noise and shifts; equal seeds make equal frames
 * @param width    width of the frames, in pixels; 0: derived from the photo (FrameSynthesis.size())
 * @param height   height of the frames, in pixels; 0: derived from the photo
 */
public record FrameSetPlan(List<FramePlan> frames, int maxShift, long seed, int width, int height) {
    /** Whether noise is added to any frame. */
    public boolean hasNoise() {
        return frames.stream().anyMatch(frame -> frame.noise() > 0);
    }

    /** Largest shift of a frame, in pixels to a side. */
    public int reach() {
        int reach = maxShift;
        for (FramePlan frame : frames) {
            if (frame.shift() != null) {
                reach = Math.max(reach, Math.max(Math.abs(frame.shift()[0]), Math.abs(frame.shift()[1])));
            }
        }
        return reach;
    }

    /** Width of the margin around a frame for shifts, in pixels; even, so that a mosaic keeps its phase. */
    public int margin() {
        return (reach() + 1) / 2 * 2;
    }
}
