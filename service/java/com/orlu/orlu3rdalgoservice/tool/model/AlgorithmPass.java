package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;

import java.util.List;

/**
 * The algorithm library's own report on its work for a request: a JSON line in the file that ORLU_ALGO_TRACE
 * names. Libraries other than the stand-in need not write reports.
 *
 * @param ran          the algorithms that did something, in order of execution
 * @param skipped      requested algorithms that are unknown or had nothing to do
 * @param milliseconds the duration of the work
 * @param frames       measurements of each frame; empty if none were made
 */
public record AlgorithmPass(List<String> ran, List<String> skipped, double milliseconds, List<Frame> frames) {
    /**
     * The measurements of one frame.
     *
     * @param sharpness a score, larger is sharper; NaN if not measured
     * @param shift     {x, y} in pixels against the base frame; null if not measured
     * @param kept      whether the result includes the frame
     */
    public record Frame(double sharpness, int[] shift, boolean kept) {
        static Frame of(Event frame) {
            List<Json> xy = frame.elements("shift");
            int[] shift = xy.size() != 2 ? null
                    : new int[] {Integer.parseInt(xy.get(0).text()), Integer.parseInt(xy.get(1).text())};
            double sharpness = frame.has("sharpness") ? frame.real("sharpness") : Double.NaN;
            return new Frame(sharpness, shift, !frame.has("kept") || frame.flag("kept"));
        }
    }

    /** Returns whether a line of the file reports a finished request. */
    public static boolean isDone(String line) {
        return line.contains("\"done\"");
    }

    /** Returns the report in the last of these lines; null if there are no lines. */
    public static AlgorithmPass last(List<Json> lines) {
        if (lines.isEmpty()) {
            return null;
        }
        Event done = new Event(lines.get(lines.size() - 1));
        return new AlgorithmPass(done.texts("ran"), done.texts("skipped"), done.real("milliseconds"),
                done.elements("frames").stream().map(frame -> Frame.of(new Event(frame))).toList());
    }
}
