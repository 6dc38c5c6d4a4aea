package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.CameraMetadataNative;
import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.tags.TagFacts;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;

import java.util.ArrayList;
import java.util.Collections;
import java.util.IdentityHashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;

/**
 * Reads "frames" of a request file: a list of frames, or an object with their count, common values, and a
 * list of individual values.
 */
final class FrameSetReader {
    private static final int LARGEST_SHIFT = 64;

    private final Json mField;
    private final Mistakes mMistakes;
    /** Fields with reported mistakes: a common field is read for each frame, but reported only once. */
    private final Set<Json> mWrong = Collections.newSetFromMap(new IdentityHashMap<>());

    private FrameSetReader(Json field) {
        mField = field;
        mMistakes = field.mistakes();
    }

    /** Reads the frames. Throws if the number of frames is unclear. */
    static FrameSetPlan read(Json field) throws MistakeException {
        return new FrameSetReader(field).set();
    }

    private FrameSetPlan set() throws MistakeException {
        if (mField.isList()) {
            List<Json> each = mField.list();
            return new FrameSetPlan(frames(each.size(), each, Json.none()), 0, 1, 0, 0);
        }
        Json set = mField.allowing(
                "count", "common", "each", "noise", "blur", "gain", "shift", "seed", "width", "height");
        List<Json> each = set.list("each");
        int count = set.has("count") ? set.get("count").integer(0, Limits.FRAMES) : Math.max(1, each.size());
        if (each.size() > count) {
            throw set.get("each").error("has " + each.size() + " frames, but count is " + count);
        }
        if (set.has("width") != set.has("height")) {
            mMistakes.add(mField.error("expected both width and height, or neither"));
        }
        return new FrameSetPlan(frames(count, each, set), set.integer("shift", 0, LARGEST_SHIFT, 0),
                set.integer("seed", Long.MIN_VALUE, Long.MAX_VALUE, 1L), ImagePlanReader.side(set, "width"),
                ImagePlanReader.side(set, "height"));
    }

    private List<FramePlan> frames(int count, List<Json> each, Json set) {
        Json common = set.object("common", "captureResult", "composition");
        List<FramePlan> frames = new ArrayList<>();
        for (int i = 0; i < count; ++i) {
            frames.add(frame(i, set, common, i < each.size() ? each.get(i) : null));
        }
        return frames;
    }

    private FramePlan frame(int index, Json set, Json common, Json field) {
        CameraMetadataNative report = new CameraMetadataNative();
        Map<String, Object> composition = new LinkedHashMap<>();
        addTags(common, index, report, composition);
        Json own = field == null ? Json.none() : mMistakes.attempt(() -> field.allowing(
                "captureResult", "composition", "noise", "blur", "gain", "shift"), Json.none());
        addTags(own, index, report, composition);
        return new FramePlan(report, composition,
                own.number("noise", 0, 255, ofFrame(set, "noise", index, 255, 0)),
                own.number("blur", 0, 20, ofFrame(set, "blur", index, 20, 0)),
                own.number("gain", 0, 100, ofFrame(set, "gain", index, 100, 1)),
                mMistakes.attempt(() -> shift(own), null));
    }

    // Returns the number for frame `index`. The field is one number for all frames, or a list with a number
    // for each frame; `fallback` applies if the number is missing or wrong.
    private double ofFrame(Json set, String name, int index, double most, double fallback) {
        if (!set.has(name) || !set.get(name).isList()) {
            return set.number(name, 0, most, fallback);
        }
        return mMistakes.attempt(() -> {
            List<Json> values = set.get(name).list();
            return index < values.size() ? values.get(index).number(0, most) : fallback;
        }, fallback);
    }

    private static int[] shift(Json members) throws MistakeException {
        if (!members.has("shift")) {
            return null;
        }
        List<Json> xy = members.get("shift").list(2);
        return new int[] {xy.get(0).integer(-LARGEST_SHIFT, LARGEST_SHIFT),
            xy.get(1).integer(-LARGEST_SHIFT, LARGEST_SHIFT)};
    }

    private void addTags(Json members, int frame, CameraMetadataNative report,
            Map<String, Object> composition) {
        tags(members, "captureResult").forEach((tag, field) -> read(tag, field, () ->
                setTag(report, tag, field, frame)));
        tags(members, "composition").forEach((key, field) -> read(key, field, () ->
                composition.put(key, TagValues.ofKey(key, field, frame))));
    }

    private Map<String, Json> tags(Json members, String name) {
        return members.has(name) ? mMistakes.attempt(members.get(name)::members, Map.of()) : Map.of();
    }

    // Reads a tag's value. Adds the tag's type and unit to a mistake in the value.
    private void read(String tag, Json field, Mistakes.Check reading) {
        if (mWrong.contains(field)) {
            return;
        }
        int before = mMistakes.size();
        mMistakes.attempt(reading);
        TagType type = TagTable.typeOf(tag);
        if (mMistakes.size() > before) {
            mWrong.add(field);
            if (type != null) {
                mMistakes.annotate(before, "; the tag is " + typeAndUnit(tag, type));
            }
        }
    }

    private static String typeAndUnit(String tag, TagType type) {
        TagFacts facts = TagFacts.of(tag);
        return type + (facts != null && facts.hasUnit() ? " (" + facts.unit() + ")" : "");
    }

    private void setTag(CameraMetadataNative report, String tag, Json field, int frame)
            throws MistakeException {
        int before = mMistakes.size();
        Object value = TagValues.ofTag(tag, field, frame);
        if (mMistakes.size() > before) {
            return;
        }
        try {
            report.set(tag, value);
        } catch (IllegalArgumentException e) {
            throw field.error(e.getMessage());
        }
    }
}
