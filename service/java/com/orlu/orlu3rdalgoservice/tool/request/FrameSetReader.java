package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.CameraMetadataNative;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * Reads "frames" of a request file: a list of frames, or an object with their count, what they have in
 * common, and a list of what is each one's own.
 */
final class FrameSetReader {
    private static final int MOST_FRAMES = 60;
    private static final int LARGEST_SHIFT = 64;
    private static final int LARGEST_SIDE = 8192;

    private FrameSetReader() {
    }

    static FrameSetPlan read(JsonField field) throws RequestFileException {
        if (field.isList()) {
            List<JsonField> each = field.list();
            return new FrameSetPlan(frames(each.size(), each, new JsonMembers(field, Map.of())), 0, 1, 0, 0);
        }
        JsonMembers set = field.members(
                "count", "common", "each", "noise", "blur", "gain", "shift", "seed", "width", "height");
        List<JsonField> each = set.has("each") ? set.get("each").list() : List.of();
        int count = set.integer("count", 0, MOST_FRAMES, Math.max(1, each.size()));
        if (each.size() > count) {
            throw set.get("each").error("has " + each.size() + " frames, more than count");
        }
        if (set.has("width") != set.has("height")) {
            throw field.error("needs both width and height, or neither");
        }
        return new FrameSetPlan(frames(count, each, set), set.integer("shift", 0, LARGEST_SHIFT, 0),
                set.integer("seed", Long.MIN_VALUE, Long.MAX_VALUE, 1L), side(set, "width"),
                side(set, "height"));
    }

    // Even, because chroma and mosaics come in pairs of pixels.
    private static int side(JsonMembers set, String name) throws RequestFileException {
        int side = set.integer(name, 0, LARGEST_SIDE, 0);
        if (side % 2 != 0) {
            throw set.get(name).needs("an even number");
        }
        return side;
    }

    private static List<FramePlan> frames(int count, List<JsonField> each, JsonMembers set)
            throws RequestFileException {
        List<FramePlan> frames = new ArrayList<>();
        for (int i = 0; i < count; ++i) {
            frames.add(frame(i, set, i < each.size() ? each.get(i) : null));
        }
        return frames;
    }

    private static FramePlan frame(int index, JsonMembers set, JsonField own) throws RequestFileException {
        CameraMetadataNative report = new CameraMetadataNative();
        Map<String, Object> composition = new LinkedHashMap<>();
        if (set.has("common")) {
            addTags(set.get("common").members("captureResult", "composition"), index, report, composition);
        }
        JsonMembers members = new JsonMembers(own, Map.of());
        if (own != null) {
            members = own.members("captureResult", "composition", "noise", "blur", "gain", "shift");
            addTags(members, index, report, composition);
        }
        return new FramePlan(report, composition,
                members.number("noise", 0, 255, ofFrame(set, "noise", index, 255, 0)),
                members.number("blur", 0, 20, ofFrame(set, "blur", index, 20, 0)),
                members.number("gain", 0, 100, ofFrame(set, "gain", index, 100, 1)), shift(members));
    }

    // A number for all frames, or a list with one for each.
    private static double ofFrame(JsonMembers set, String name, int index, double most, double fallback)
            throws RequestFileException {
        if (!set.has(name) || !set.get(name).isList()) {
            return set.number(name, 0, most, fallback);
        }
        List<JsonField> values = set.get(name).list();
        return index < values.size() ? values.get(index).number(0, most) : fallback;
    }

    private static int[] shift(JsonMembers members) throws RequestFileException {
        if (!members.has("shift")) {
            return null;
        }
        List<JsonField> xy = members.get("shift").list(2);
        return new int[] {xy.get(0).integer(-LARGEST_SHIFT, LARGEST_SHIFT),
            xy.get(1).integer(-LARGEST_SHIFT, LARGEST_SHIFT)};
    }

    private static void addTags(JsonMembers members, int frame, CameraMetadataNative report,
            Map<String, Object> composition) throws RequestFileException {
        if (members.has("captureResult")) {
            for (Map.Entry<String, JsonField> tag : members.get("captureResult").anyMembers().entrySet()) {
                setTag(report, tag.getKey(), tag.getValue(), frame);
            }
        }
        if (members.has("composition")) {
            for (Map.Entry<String, JsonField> key : members.get("composition").anyMembers().entrySet()) {
                composition.put(key.getKey(), TagValues.ofKey(key.getKey(), key.getValue(), frame));
            }
        }
    }

    private static void setTag(CameraMetadataNative report, String tag, JsonField field, int frame)
            throws RequestFileException {
        Object value = TagValues.ofTag(tag, field, frame);
        try {
            report.set(tag, value);
        } catch (IllegalArgumentException e) {
            throw field.error(e.getMessage());
        }
    }
}
