package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.HexFormat;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.regex.Pattern;

/**
 * Finds private facts about a person or a machine in a recording, and makes copies without them. If in
 * doubt, a text counts as private: it is kept only if it is short and contains only common characters, and if
 * the name of its tag or field does not suggest an identity.
 */
public final class PrivateFacts {
    /** Members of the header that describe the recording, not the machine. */
    private static final Set<String> PLAIN_HEADER = Set.of("format", "version", "interface");
    private static final Pattern PLACE = pattern("gps|(?<!al)location|latitude|longitude");
    private static final Pattern TIME = pattern("local_?time|wall_?(time|clock)|utc|(?<!up)date|_epoch");
    private static final Pattern FACE =
            pattern("(?<!sur)(?<!inter)face(s?(num|rect|$)|skin|id|land|score)|outlines|beauty_?pose"
            + "|gender|ismale");
    /** Names of values that may identify a person or machine, whatever their type. */
    private static final Pattern IDENTITY =
            pattern("serial|finger_?print|imei|uuid|account|android_?id|phone|mac_?addr|ssid");
    /** Names of strings and byte arrays that may identify a person or machine. */
    private static final Pattern IDENTIFYING_TEXT = pattern(
            "(?<!g)host|user|owner|artist|author|copyright|mail|address|unique|calib|otp|eeprom|exif"
            + "|comment|path|folder|file_?name|package|build|product|brand|manufact|model|maker_?note"
            + "|device_?(id|name)|water_?mark");
    private static final Pattern PLAIN_NAME = Pattern.compile("[A-Za-z0-9_.-]{0,100}");
    private static final Pattern PLAIN_TEXT = Pattern.compile("[A-Za-z0-9_.:,+ -]{0,40}");
    /**
     * A text in binary data: at least six characters, each of one or two bytes. The length is bounded,
     * because matching uses stack for each character. The bound is the first length that PLAIN_TEXT rejects.
     */
    private static final Pattern RUN = Pattern.compile("(?:[\\x20-\\x7e]\\x00?){6,41}");

    private final boolean mKeepsFaces;
    private final Map<String, Integer> mFound = new LinkedHashMap<>();

    private static Pattern pattern(String names) {
        return Pattern.compile(names, Pattern.CASE_INSENSITIVE);
    }

    /** Faces count as private unless `keepsFaces` is set. */
    public PrivateFacts(boolean keepsFaces) {
        mKeepsFaces = keepsFaces;
    }

    /** Returns a line for each fact, with a count if the fact was found several times. */
    public List<String> lines() {
        List<String> lines = new ArrayList<>();
        mFound.forEach((fact, count) -> lines.add(fact + (count > 1 ? " (" + count + " times)" : "")));
        return lines;
    }

    private void found(String kind, String where) {
        mFound.merge(kind + ": " + where, 1, Integer::sum);
    }

    /** Finds the private facts in a run's request, outcome, events and images. */
    public void findAll(Run run) throws MistakeException {
        request(run.root());
        Json outcome = run.outcome();
        for (String call : List.of("processed", "updated")) {
            Json made = outcome.at(call);
            values(made.at("composition"));
            if (made.has("thrown")) {
                keepsText("outcome.json, thrown", made.get("thrown").text());
            }
        }
        if (outcome.has("failed")) {
            keepsText("outcome.json, failed", outcome.get("failed").text());
        }
        outcome.at("put").elements().forEach(this::values);
        if (!run.events().events().isEmpty()) {
            found("raw bytes of values, paths, and names of threads", RunFolder.EVENTS);
        }
        for (List<ImageLayout> images : List.of(run.inputs(), run.outputs(), run.results())) {
            for (ImageLayout image : images) {
                findIn(image);
            }
        }
    }

    private void findIn(ImageLayout image) throws MistakeException {
        if (image.file() != null) {
            withoutFacts(image, image.bytes(), image.file().path().getFileName().toString());
        }
        keepsText("the reason why an image was not kept", image.kept());
    }

    /** Returns the members of a recorded request, with private facts removed. Images stay as they are. */
    public Map<String, Object> request(Json root) throws MistakeException {
        Map<String, Object> request = new LinkedHashMap<>(root.members());
        request.remove("about");
        if (root.has("about") && !root.get("about").text().isEmpty()) {
            found("description", "about");
        }
        request.put("recording", header(root.get("recording")));
        if (!keepsText("request.type", root.get("request").string("type", ""))) {
            Map<String, Object> plain = new LinkedHashMap<>(root.get("request").members());
            plain.put("type", "");
            request.put("request", plain);
        }
        request.put("trimmed", trimmed(root.list("trimmed")));
        for (String part : List.of("client", "properties")) {
            if (root.has(part)) {
                request.put(part, values(root.get(part)));
            }
        }
        request.put("frames", root.get("frames").elements().stream().map(this::frame).toList());
        return request;
    }

    private Map<String, Object> header(Json header) {
        Map<String, Object> plain = new LinkedHashMap<>();
        header.entries().forEach((name, value) -> {
            if (PLAIN_HEADER.contains(name)) {
                plain.put(name, keepsText("recording." + name, value.text()) ? value : "");
            } else if (!name.equals("milliseconds") && !name.equals("eventsFrom")) {
                found("machine", "recording." + name);
            }
        });
        plain.put("milliseconds", 0);
        if (header.has("milliseconds") && !header.get("milliseconds").text().equals("0")) {
            found("time of day", "recording.milliseconds");
        }
        return plain;
    }

    // Returns the descriptions of earlier trims, without private facts.
    private List<Object> trimmed(List<Json> cuts) {
        List<Object> plain = new ArrayList<>();
        for (Json cut : cuts) {
            Map<String, Object> members = new LinkedHashMap<>();
            if (cut.has("frames")) {
                members.put("frames", cut.get("frames").elements().stream().filter(Json::isNumber).toList());
            }
            if (cut.has("crop") && keepsText("trimmed.crop", cut.get("crop").text())) {
                members.put("crop", cut.get("crop").text());
            }
            if (cut.has("private")) {
                members.put("private", true);
            }
            plain.add(members);
        }
        return plain;
    }

    private Map<String, Object> frame(Json frame) {
        return JsonWriter.object("captureResult", values(frame.get("captureResult")),
                "composition", values(frame.get("composition")));
    }

    private Map<String, Object> values(Json values) {
        Map<String, Object> plain = new LinkedHashMap<>();
        values.entries().forEach((name, value) -> {
            if (keeps(name, value)) {
                plain.put(name, value);
            }
        });
        return plain;
    }

    private boolean keeps(String name, Json value) {
        String kind = value.has("location") || PLACE.matcher(name).find() ? "location"
                : TIME.matcher(name).find() ? "time of day"
                : !mKeepsFaces && (value.has("faces") || FACE.matcher(name).find()) ? "face"
                : value.has("class") ? "value of an unsupported class" : "";
        if (!kind.isEmpty()) {
            found(kind, name);
            return false;
        }
        if (IDENTITY.matcher(name).find() || isText(value) && IDENTIFYING_TEXT.matcher(name).find()) {
            found("value that may identify a person or machine", name);
            return false;
        }
        if (!PLAIN_NAME.matcher(name).matches()) {
            found("text", name);
            return false;
        }
        return keepsTexts(name, value);
    }

    private static boolean isText(Json value) {
        return value.isString() || value.has("string") || value.has("strings") || value.has("bytes");
    }

    private boolean keepsTexts(String name, Json value) {
        if (value.isString()) {
            return keepsText(name, value.text());
        } else if (value.has("string")) {
            return keepsText(name, value.get("string").text());
        } else if (value.has("bytes")) {
            return RUN.matcher(ofHexadecimal(value.get("bytes").text())).results()
                    .allMatch(run -> keepsText(name, run.group()));
        }
        return value.at("strings").elements().stream().allMatch(text -> keepsText(name, text.text()));
    }

    private boolean keepsText(String where, String text) {
        boolean isKept = PLAIN_TEXT.matcher(text).matches();
        if (!isKept) {
            found("text", where);
        }
        return isKept;
    }

    // Returns a character for each byte; "" if the text is not hexadecimal.
    private static String ofHexadecimal(String text) {
        try {
            return new String(HexFormat.of().parseHex(text), StandardCharsets.ISO_8859_1);
        } catch (IllegalArgumentException e) {
            return "";
        }
    }

    /**
     * Returns the bytes of an image, with private facts removed; `name` is the name of the image's file. In a
     * JPEG, the picture, JFIF header, colour profile and colour transform remain. The contents of EXIF and
     * other application blocks, thumbnails, comments, and bytes after the picture become 0.
     */
    public byte[] withoutFacts(ImageLayout image, byte[] bytes, String name) {
        PixelFormat format = PixelFormat.named(image.format());
        // Other known formats contain only pixels, which may look like the start of a JPEG.
        byte[] plain = format == null || format == PixelFormat.JPEG ? JpegBlocks.blank(bytes) : bytes;
        if (plain != bytes) {
            found("EXIF block, comment or further data of a JPEG", name);
        }
        return plain;
    }
}
