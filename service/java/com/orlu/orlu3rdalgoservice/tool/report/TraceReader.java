package com.orlu.orlu3rdalgoservice.tool.report;

import com.google.gson.Gson;
import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonObject;
import com.google.gson.JsonParseException;

import java.io.IOException;
import java.io.RandomAccessFile;
import java.nio.charset.StandardCharsets;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HexFormat;
import java.util.List;

/**
 * Reads what the algorithm library writes about its work: JSON lines in the file that ORLU_ALGO_TRACE names.
 * Only the stand-in writes them; with any other library there is nothing to read.
 */
public final class TraceReader {
    /** The environment variable that names the file. */
    public static final String VARIABLE = "ORLU_ALGO_TRACE";

    private final Path mFile;
    private long mRead;

    /** A reader of a file that may not be there yet; null for none. */
    public TraceReader(Path file) {
        mFile = file;
        mRead = file == null ? 0 : Math.max(0, file.toFile().length());
    }

    /** What came since the last call, null when nothing was traced at all. */
    public Trace next() throws IOException {
        Trace trace = new Trace();
        List<String> lines = newLines();
        for (String line : lines) {
            add(trace, line);
        }
        return lines.isEmpty() ? null : trace;
    }

    // Whole lines only: what the library is still writing is left for the next time.
    private List<String> newLines() throws IOException {
        if (mFile == null || !mFile.toFile().isFile()) {
            return List.of();
        }
        try (RandomAccessFile file = new RandomAccessFile(mFile.toFile(), "r")) {
            byte[] bytes = new byte[Math.toIntExact(Math.max(0, file.length() - mRead))];
            file.seek(mRead);
            file.readFully(bytes);
            String text = new String(bytes, StandardCharsets.ISO_8859_1);
            String whole = text.substring(0, text.lastIndexOf('\n') + 1);
            mRead += whole.length();
            return whole.lines().toList();
        }
    }

    private static void add(Trace trace, String line) {
        try {
            JsonObject object = new Gson().fromJson(line, JsonObject.class);
            switch (object.get("op").getAsString()) {
                case "setValue" -> trace.parameters.add(parameter(object));
                case "process" -> trace.algorithms = strings(object.getAsJsonArray("algoList"));
                case "done" -> trace.pass = pass(object);
                default -> { }
            }
        } catch (JsonParseException | IllegalStateException | IllegalArgumentException
                | NullPointerException e) {
            throw new IllegalStateException("the algorithm library's trace has an odd line: " + line, e);
        }
    }

    private static Parameter parameter(JsonObject object) {
        return new Parameter(object.get("section").getAsString(), object.get("key").getAsString(),
                HexFormat.of().parseHex(object.get("hex").getAsString()));
    }

    private static List<String> strings(JsonArray array) {
        List<String> strings = new ArrayList<>();
        for (JsonElement element : array) {
            strings.add(element.getAsString());
        }
        return strings;
    }

    private static AlgorithmPass pass(JsonObject object) {
        List<AlgorithmPass.Frame> frames = new ArrayList<>();
        if (object.has("frames")) {
            for (JsonElement frame : object.getAsJsonArray("frames")) {
                frames.add(frame(frame.getAsJsonObject()));
            }
        }
        return new AlgorithmPass(
                strings(object.getAsJsonArray("ran")), object.get("milliseconds").getAsDouble(), frames);
    }

    private static AlgorithmPass.Frame frame(JsonObject frame) {
        int[] shift = null;
        if (frame.has("shift")) {
            JsonArray xy = frame.getAsJsonArray("shift");
            shift = new int[] {xy.get(0).getAsInt(), xy.get(1).getAsInt()};
        }
        double sharpness = frame.has("sharpness") ? frame.get("sharpness").getAsDouble() : Double.NaN;
        return new AlgorithmPass.Frame(sharpness, shift,
                !frame.has("kept") || frame.get("kept").getAsBoolean());
    }
}
