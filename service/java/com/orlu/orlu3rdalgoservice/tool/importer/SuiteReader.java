package com.orlu.orlu3rdalgoservice.tool.importer;

import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.math.BigDecimal;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Consumer;
import java.util.function.Function;

/** Reads the JSON that a camera image test writes beside its pictures. */
final class SuiteReader {
    private final Notes mNotes;
    private final List<ImportedFrame> mFrames = new ArrayList<>();
    private final List<SuiteOutput> mOutputs = new ArrayList<>();

    SuiteReader(Notes notes) {
        mNotes = notes;
    }

    List<ImportedFrame> frames() {
        return mFrames;
    }

    List<SuiteOutput> outputs() {
        return mOutputs;
    }

    void read(Path file) throws MistakeException {
        Json shot = Json.read(file);
        Map<String, Json> members = shot.members();
        if (shot.has("captureResult")) {
            addFrame(shot.get("captureResult"));
        }
        addEach(shot.get("captureResults"), this::addFrame);
        if (mFrames.isEmpty()) {
            throw shot.error("expected captureResult (an object of tags) or captureResults (a list of such "
                    + "objects)");
        }
        // The test writes the tags that all frames share once. A request file repeats them in each frame.
        if (shot.has("cameraProperties")) {
            ImportedFrame properties = new ImportedFrame();
            addTags(properties, shot.get("cameraProperties"));
            mFrames.forEach(frame -> frame.fillFrom(properties));
        }
        addEach(shot.get("outputs"), this::addOutput);
        for (String member : members.keySet()) {
            if (!List.of("cameraProperties", "captureResult", "captureResults", "outputs").contains(member)) {
                mNotes.add(member, "ignored; not a result or an output");
            }
        }
    }

    private void addEach(Json list, Consumer<Json> add) {
        if (list != null && !list.isList()) {
            mNotes.add(list.path(), "dropped; not a list");
        } else if (list != null) {
            list.elements().forEach(add);
        }
    }

    private void addFrame(Json result) {
        ImportedFrame frame = new ImportedFrame();
        if (addTags(frame, result)) {
            mFrames.add(frame);
        }
    }

    private boolean addTags(ImportedFrame frame, Json tags) {
        if (!tags.isObject()) {
            mNotes.add(tags.path(), "dropped; not an object of tags");
            return false;
        }
        for (Map.Entry<String, Json> tag : tags.entries().entrySet()) {
            TagType type = TagTable.typeOf(tag.getKey());
            if (tag.getValue().isNull()) {
                continue;
            }
            if (type == null) {
                mNotes.add(tags.path(), tag.getKey() + " dropped; unknown tag");
            } else {
                frame.put(tag.getKey(), converted(type, tag.getValue()), tags.path(), mNotes);
            }
        }
        return true;
    }

    // Converts a value to the form of request files. Returns a value of unknown form unchanged;
    // ImportedFrame.put() then drops the tag and adds a note.
    private static Object converted(TagType type, Json value) {
        return switch (type) {
            case INT -> value.isBoolean() ? value.isTrue() ? 1 : 0 : value;
            case BYTES -> value.isList() ? JsonWriter.object("int8", value) : value;
            case INT_ARRAY -> value.has("width") && value.has("height")
                    ? List.of(value.get("width"), value.get("height")) : value;
            case METERING_RECTANGLES -> each(value, SuiteReader::region);
            case FACES -> each(value, SuiteReader::face);
            default -> value;
        };
    }

    private static Object each(Json value, Function<Json, Object> conversion) {
        return value.isList() ? value.elements().stream().map(conversion).toList() : value;
    }

    private static Object region(Json region) {
        try {
            BigDecimal left = region.require("x").number();
            BigDecimal top = region.require("y").number();
            Map<String, Object> edges = JsonWriter.object("left", left, "top", top,
                    "right", left.add(region.require("width").number()),
                    "bottom", top.add(region.require("height").number()));
            if (region.has("weight")) {
                edges.put("weight", region.get("weight"));
            }
            return edges;
        } catch (MistakeException e) {
            return region;
        }
    }

    // Omits eyes, mouth and id, which the library does not read.
    private static Object face(Json face) {
        try {
            Map<String, Object> edges = new LinkedHashMap<>(face.require("bounds").members());
            if (face.has("score")) {
                edges.put("score", face.get("score"));
            }
            return edges;
        } catch (MistakeException e) {
            return face;
        }
    }

    private void addOutput(Json element) {
        SuiteOutput output = SuiteOutput.of(element);
        if (output == null) {
            mNotes.add(element.path(), "dropped; expected width, height and a format of "
                    + SuiteOutput.FORMATS.keySet());
        } else {
            mOutputs.add(output);
        }
    }
}
