package com.orlu.orlu3rdalgoservice.tool.model;

import android.hardware.camera2.impl.CameraMetadataNative;
import android.hardware.camera2.impl.TagTable;

import com.google.gson.JsonElement;
import com.google.gson.JsonObject;
import com.google.gson.JsonParseException;
import com.google.gson.JsonParser;

import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.FrameSetPlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.request.TypedValue;
import com.orlu.orlu3rdalgoservice.tool.text.Frames;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Place;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.zip.CRC32;

/** A recorded request, read as far as it is whole: the lines up to the first that is cut or damaged. */
public final class RecordedRequest {
    /** The file of the parts, by which a folder is known as a recording. */
    public static final String LINES = "recording";
    static final String EVENTS = "events";

    private static final String FORMAT = "orlu-recording";
    private static final int VERSION = 1;
    private static final int CHECK_LENGTH = 8;
    private static final int CAMERA_IMAGE_FORMAT = 35;

    private final Path mFolder;
    private final List<JsonObject> mParts = new ArrayList<>();
    private final List<String> mNotes = new ArrayList<>();
    private String mProblem = "";

    private RecordedRequest(Path folder) {
        mFolder = folder;
    }

    public static boolean isRecording(Path folder) {
        return Files.isRegularFile(folder.resolve(LINES));
    }

    /** Reads a folder. MistakeException for one that holds no recording, or one of another version. */
    public static RecordedRequest read(Path folder) throws MistakeException {
        RecordedRequest recorded = new RecordedRequest(folder);
        recorded.readLines();
        JsonObject header = recorded.part("header");
        if (header == null) {
            String reason = recorded.mProblem.isEmpty() ? "it is empty" : recorded.mProblem;
            throw recorded.error("", "no recording that can be read: " + reason);
        }
        if (!header.get("format").getAsString().equals(FORMAT)
                || header.get("version").getAsInt() != VERSION) {
            throw recorded.error("header", "needs " + FORMAT + " version " + VERSION + ", found "
                    + header.get("format").getAsString() + " version " + header.get("version"));
        }
        return recorded;
    }

    private MistakeException error(String field, String problem) {
        return new MistakeException(mFolder.resolve(LINES).toString(), field, problem);
    }

    private void readLines() throws MistakeException {
        byte[] bytes = bytesOf(LINES);
        int start = 0;
        for (int number = 1; start < bytes.length; ++number) {
            int end = start;
            while (end < bytes.length && bytes[end] != '\n') {
                ++end;
            }
            String problem = end == bytes.length ? "is cut" : readLine(bytes, start, end);
            if (!problem.isEmpty()) {
                mProblem = "line " + number + " " + problem;
                return;
            }
            start = end + 1;
        }
    }

    // Returns what is wrong with the line, empty when nothing is.
    private String readLine(byte[] bytes, int start, int end) {
        int text = start + CHECK_LENGTH + 1;
        if (end <= text) {
            return "is no part with its check";
        }
        String check = new String(bytes, start, CHECK_LENGTH, StandardCharsets.US_ASCII);
        String found = check(bytes, text, end - text);
        if (!check.equals(found)) {
            return "is damaged: its check is " + check + ", that of its bytes " + found;
        }
        try {
            String json = new String(bytes, text, end - text, StandardCharsets.UTF_8);
            mParts.add(JsonParser.parseString(json).getAsJsonObject());
            return "";
        } catch (JsonParseException | IllegalStateException e) {
            return "is no JSON object";
        }
    }

    static String check(byte[] bytes, int start, int length) {
        CRC32 check = new CRC32();
        check.update(bytes, start, length);
        return "%08x".formatted(check.getValue());
    }

    private byte[] bytesOf(String name) throws MistakeException {
        Path file = mFolder.resolve(name);
        try {
            return Files.readAllBytes(file);
        } catch (IOException e) {
            throw new MistakeException(
                    file.toString(), "", Files.exists(file) ? "can't be read" : "no such file");
        }
    }

    /**
     * Puts the events of a recording whose process ended beside it, cut out of the file that they went into,
     * and the pixels that they name, of this folder; null for none.
     */
    public static void addEvents(Path folder, Path events, Path pixels) throws IOException {
        try {
            RecordedRequest recorded = read(folder);
            JsonObject at = recorded.part("eventsAt");
            if (!recorded.isComplete() && at != null && !Files.exists(folder.resolve(EVENTS))) {
                byte[] all = Files.readAllBytes(events);
                int from = (int) Math.min(all.length, at.get("from").getAsLong());
                Files.write(folder.resolve(EVENTS), Arrays.copyOfRange(all, from, all.length));
                recorded.addPixels(pixels);
            }
        } catch (MistakeException e) {
            System.err.println("run: " + e.getMessage());
        }
    }

    private void addPixels(Path from) throws MistakeException, IOException {
        for (Event event : events().events("pixels")) {
            String name = event.text("file");
            if (from != null && !name.isEmpty() && Files.isRegularFile(from.resolve(name))) {
                Files.copy(from.resolve(name), mFolder.resolve(name));
            }
        }
    }

    public Path folder() {
        return mFolder;
    }

    /** Where reading had to stop, and why; empty when all lines are whole. */
    public String problem() {
        return mProblem;
    }

    /** Whether the recorder came to its end. Else the process ended, or recording failed. */
    public boolean isComplete() {
        return part("end") != null;
    }

    public List<JsonObject> parts() {
        return mParts;
    }

    public List<JsonObject> parts(String name) {
        return mParts.stream().filter(part -> part.get("part").getAsString().equals(name)).toList();
    }

    /** The first part of this name, null when there is none. */
    public JsonObject part(String name) {
        List<JsonObject> found = parts(name);
        return found.isEmpty() ? null : found.get(0);
    }

    /**
     * What of a request was left out by trimming, once or several times, "" when it is whole: "cropped to
     * 320x240, only frames 0, 2 of the recording".
     */
    public String trimmed() {
        StringBuilder text = new StringBuilder();
        for (JsonObject part : parts("trimmed")) {
            // Frames of a copy that was trimmed again are those of that copy.
            text.append(text.isEmpty() ? trimmed(part, "recording") : ", then " + trimmed(part, "copy"));
        }
        return text.toString();
    }

    private static String trimmed(JsonObject part, String of) {
        List<Integer> frames = new ArrayList<>();
        if (part.has("frames")) {
            part.getAsJsonArray("frames").forEach(frame -> frames.add(frame.getAsInt()));
        }
        String crop = part.has("crop") ? "cropped to " + part.get("crop").getAsString() : "";
        String kept = frames.isEmpty() ? "" : "only " + Frames.text(frames) + " of the " + of;
        return crop + (crop.isEmpty() || kept.isEmpty() ? "" : ", ") + kept;
    }

    /** What of the request can't be made again, known after toRequest(). */
    public List<String> notes() {
        return mNotes;
    }

    /** The images that went in, or those for the results, as they were described. */
    public List<RecordedImage> images(String part) {
        return parts(part).stream().map(image -> new RecordedImage(this, image)).toList();
    }

    /** The bytes of a file of this recording, which have this check. */
    byte[] checkedBytes(String name, String check) throws MistakeException {
        byte[] bytes = bytesOf(name);
        String found = check(bytes, 0, bytes.length);
        if (!check.equals(found)) {
            throw new MistakeException(mFolder.resolve(name).toString(), "",
                    "is cut or damaged: its " + bytes.length + " bytes have the check " + found
                            + " instead of " + check);
        }
        return bytes;
    }

    /** What is wrong with the file of events; "" when it is whole, or there is none. */
    public String eventsProblem() {
        JsonObject part = part(EVENTS);
        try {
            if (part != null && part.has("file")) {
                checkedBytes(part.get("file").getAsString(), part.get("crc").getAsString());
            }
            return "";
        } catch (MistakeException e) {
            return e.getMessage();
        }
    }

    /** What passed between the libraries: the whole lines, none when the probe was not there. */
    public RecordedEvents events() throws MistakeException {
        RecordedEvents events = new RecordedEvents();
        if (Files.isRegularFile(mFolder.resolve(EVENTS))) {
            events.add(EventLines.read(mFolder.resolve(EVENTS)));
        }
        return events;
    }

    /**
     * The request to be run again, without its images. MistakeException when its frames were not
     * reached.
     */
    public RequestFile toRequest() throws MistakeException {
        JsonObject request = part("request");
        if (request == null || part("running") == null) {
            throw error("", "ends before the request ran" + (mProblem.isEmpty() ? "" : ": " + mProblem));
        }
        List<FramePlan> frames = new ArrayList<>();
        for (JsonObject frame : parts("frame")) {
            frames.add(frame(frame, "frame[" + frames.size() + "]"));
        }
        Map<String, Object> client = values(part("client"), "values", "client");
        Map<String, String> properties = new LinkedHashMap<>();
        values(part("properties"), "values", "properties").forEach((name, value) ->
                properties.put(name, String.valueOf(value)));
        boolean fullAsync = !frames.isEmpty()
                && Integer.valueOf(1).equals(frames.get(0).composition().get("isFullAsync"));
        long clientId = client.get("clientId") instanceof Long id ? id : 1;
        int context = client.get("algoContextIndex") instanceof Integer index ? index : 0;
        return new RequestFile(mFolder, "", request.get("id").getAsLong(), request.get("type").getAsString(),
                clientId, context, CAMERA_IMAGE_FORMAT, properties, fullAsync, null,
                new FrameSetPlan(frames, 0, 0, 0, 0), List.of(), List.of(), Place.ofFile(mFolder.toString()));
    }

    private FramePlan frame(JsonObject frame, String place) throws MistakeException {
        CameraMetadataNative captureResult = new CameraMetadataNative();
        for (Map.Entry<String, Object> tag : values(frame, "captureResult", place).entrySet()) {
            if (TagTable.typeOf(tag.getKey()) == null) {
                mNotes.add(place + ": no tag " + tag.getKey() + " is known here");
                continue;
            }
            try {
                captureResult.set(tag.getKey(), tag.getValue());
            } catch (IllegalArgumentException e) {
                mNotes.add(place + ": " + e.getMessage());
            }
        }
        return new FramePlan(captureResult, values(frame, "composition", place), 0, 0, 1, null);
    }

    private Map<String, Object> values(JsonObject part, String member, String place)
            throws MistakeException {
        Map<String, Object> values = new LinkedHashMap<>();
        if (part == null || !part.has(member)) {
            return values;
        }
        for (Map.Entry<String, JsonElement> entry : part.getAsJsonObject(member).entrySet()) {
            String key = place + "." + entry.getKey();
            if (TypedValue.isOfOtherClass(entry.getValue())) {
                mNotes.add(key + ": left out, a value of the class "
                        + entry.getValue().getAsJsonObject().get("class").getAsString());
            } else {
                values.put(entry.getKey(),
                        TypedValue.read(mFolder.resolve(LINES).toString(), key, entry.getValue()));
            }
        }
        return values;
    }
}
