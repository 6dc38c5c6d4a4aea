package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;

import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/**
 * Reads the algorithm library's own report of its work: JSON lines in the file that ORLU_ALGO_TRACE names.
 * Only finished requests are read. Libraries other than the stand-in may write none.
 */
public final class TraceReader {
    private final LineFile mLines;

    /** Takes a file that may not exist yet; null for none. */
    public TraceReader(Path file) {
        mLines = new LineFile(file, line -> line.contains("\"done\""));
    }

    /** Returns the last request finished since the last call; null if there is none. */
    public AlgorithmPass next() throws IOException {
        List<Json> lines = mLines.next();
        return lines.isEmpty() ? null : pass(new Event(lines.get(lines.size() - 1)));
    }

    private static AlgorithmPass pass(Event done) {
        List<AlgorithmPass.Frame> frames = new ArrayList<>();
        done.elements("frames").forEach(frame -> frames.add(frame(new Event(frame))));
        return new AlgorithmPass(
                done.texts("ran"), done.texts("skipped"), done.real("milliseconds"), frames);
    }

    private static AlgorithmPass.Frame frame(Event frame) {
        List<Json> xy = frame.elements("shift");
        int[] shift = xy.size() != 2 ? null
                : new int[] {Integer.parseInt(xy.get(0).text()), Integer.parseInt(xy.get(1).text())};
        double sharpness = frame.has("sharpness") ? frame.real("sharpness") : Double.NaN;
        return new AlgorithmPass.Frame(sharpness, shift, !frame.has("kept") || frame.flag("kept"));
    }
}
