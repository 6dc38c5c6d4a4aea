package com.orlu.orlu3rdalgoservice.tool.model;

import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/**
 * Reads what only the algorithm library knows of its work: JSON lines in the file that ORLU_ALGO_TRACE names.
 * Only the one of a finished request is read. Another library than the stand-in may write none.
 */
public final class TraceReader {
    /** The environment variable that names the file. */
    public static final String VARIABLE = "ORLU_ALGO_TRACE";

    private final LineFile mLines;

    /** A reader of a file that may not be there yet; null for none. */
    public TraceReader(Path file) {
        mLines = new LineFile(file, line -> line.contains("\"done\""));
    }

    /** The last request that was finished since the last call, null when there was none. */
    public AlgorithmPass next() throws IOException {
        List<JsonObject> lines = mLines.next();
        return lines.isEmpty() ? null : pass(new Event(lines.get(lines.size() - 1)));
    }

    private static AlgorithmPass pass(Event done) {
        List<AlgorithmPass.Frame> frames = new ArrayList<>();
        if (done.has("frames")) {
            for (JsonElement frame : done.fields().getAsJsonArray("frames")) {
                frames.add(frame(new Event(frame.getAsJsonObject())));
            }
        }
        double milliseconds = done.has("milliseconds") ? done.fields().get("milliseconds").getAsDouble() : 0;
        return new AlgorithmPass(done.texts("ran"), done.texts("skipped"), milliseconds, frames);
    }

    private static AlgorithmPass.Frame frame(Event frame) {
        int[] shift = null;
        if (frame.has("shift")) {
            JsonArray xy = frame.fields().getAsJsonArray("shift");
            shift = new int[] {xy.get(0).getAsInt(), xy.get(1).getAsInt()};
        }
        double sharpness =
                frame.has("sharpness") ? frame.fields().get("sharpness").getAsDouble() : Double.NaN;
        return new AlgorithmPass.Frame(sharpness, shift, !frame.has("kept") || frame.flag("kept"));
    }
}
