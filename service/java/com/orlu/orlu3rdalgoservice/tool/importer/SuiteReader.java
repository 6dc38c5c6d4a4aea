package com.orlu.orlu3rdalgoservice.tool.importer;

import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;

import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonObject;
import com.google.gson.JsonPrimitive;

import com.orlu.orlu3rdalgoservice.tool.request.JsonTree;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;

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
        JsonElement root = JsonTree.read(file);
        if (!root.isJsonObject()) {
            throw new MistakeException(file.toString(), "", "needs an object");
        }
        JsonObject shot = root.getAsJsonObject();
        addFrame("captureResult", shot.get("captureResult"));
        addEach("captureResults", shot.get("captureResults"), this::addFrame);
        if (mFrames.isEmpty()) {
            throw new MistakeException(
                    file.toString(), "", "needs captureResult or captureResults, objects of tags");
        }
        // What never changes is no part of a result there, and is looked for in one here.
        if (shot.has("cameraProperties")) {
            ImportedFrame properties = new ImportedFrame();
            addTags(properties, "cameraProperties", shot.get("cameraProperties"));
            mFrames.forEach(frame -> frame.fillFrom(properties));
        }
        addEach("outputs", shot.get("outputs"), this::addOutput);
        for (String member : shot.keySet()) {
            if (!List.of("cameraProperties", "captureResult", "captureResults", "outputs").contains(member)) {
                mNotes.add(member, "not taken: it is no result");
            }
        }
    }

    private interface Element {
        void add(String place, JsonElement element);
    }

    private void addEach(String place, JsonElement list, Element each) {
        if (list != null && !list.isJsonArray()) {
            mNotes.add(place, "dropped, it is no list");
        } else if (list != null) {
            for (int i = 0; i < list.getAsJsonArray().size(); ++i) {
                each.add(place + "[" + i + "]", list.getAsJsonArray().get(i));
            }
        }
    }

    private void addFrame(String place, JsonElement result) {
        if (result != null) {
            ImportedFrame frame = new ImportedFrame();
            if (addTags(frame, place, result)) {
                mFrames.add(frame);
            }
        }
    }

    private boolean addTags(ImportedFrame frame, String place, JsonElement tags) {
        if (!tags.isJsonObject()) {
            mNotes.add(place, "dropped, it is no object of tags");
            return false;
        }
        for (Map.Entry<String, JsonElement> tag : tags.getAsJsonObject().entrySet()) {
            TagType type = TagTable.typeOf(tag.getKey());
            if (tag.getValue().isJsonNull()) {
                continue;
            }
            if (type == null) {
                mNotes.add(place, tag.getKey() + " dropped, unknown tag");
            } else {
                frame.put(tag.getKey(), converted(type, tag.getValue()), place, mNotes);
            }
        }
        return true;
    }

    // What is of no form that is known goes on as it is, and is complained about by its type.
    private static JsonElement converted(TagType type, JsonElement value) {
        return switch (type) {
            case INT -> isBoolean(value) ? new JsonPrimitive(value.getAsBoolean() ? 1 : 0) : value;
            case BYTES -> value.isJsonArray() ? object("int8", value) : value;
            case INT_ARRAY -> hasAll(value, "width", "height")
                    ? list(value.getAsJsonObject().get("width"), value.getAsJsonObject().get("height"))
                    : value;
            case METERING_RECTANGLES -> each(value, SuiteReader::region);
            case FACES -> each(value, SuiteReader::face);
            default -> value;
        };
    }

    private interface Conversion {
        JsonElement of(JsonObject object);
    }

    private static JsonElement each(JsonElement value, Conversion conversion) {
        if (!value.isJsonArray()) {
            return value;
        }
        JsonArray converted = new JsonArray();
        for (JsonElement element : value.getAsJsonArray()) {
            converted.add(element.isJsonObject() ? conversion.of(element.getAsJsonObject()) : element);
        }
        return converted;
    }

    private static JsonElement region(JsonObject region) {
        for (String member : List.of("x", "y", "width", "height")) {
            if (!isNumber(region.get(member))) {
                return region;
            }
        }
        JsonObject edges = new JsonObject();
        edges.add("left", region.get("x"));
        edges.add("top", region.get("y"));
        edges.add("right", sum(region.get("x"), region.get("width")));
        edges.add("bottom", sum(region.get("y"), region.get("height")));
        if (region.has("weight")) {
            edges.add("weight", region.get("weight"));
        }
        return edges;
    }

    // Eyes, mouth and id are nothing that the library asks for.
    private static JsonElement face(JsonObject face) {
        if (!face.has("bounds") || !face.get("bounds").isJsonObject()) {
            return face;
        }
        JsonObject edges = face.getAsJsonObject("bounds").deepCopy();
        if (face.has("score")) {
            edges.add("score", face.get("score"));
        }
        return edges;
    }

    private static JsonPrimitive sum(JsonElement one, JsonElement other) {
        return new JsonPrimitive(one.getAsBigDecimal().add(other.getAsBigDecimal()));
    }

    private static boolean isBoolean(JsonElement value) {
        return value.isJsonPrimitive() && value.getAsJsonPrimitive().isBoolean();
    }

    private static boolean isNumber(JsonElement value) {
        return value != null && value.isJsonPrimitive() && value.getAsJsonPrimitive().isNumber();
    }

    private static boolean hasAll(JsonElement value, String... members) {
        return value.isJsonObject() && value.getAsJsonObject().keySet().containsAll(List.of(members));
    }

    private static JsonArray list(JsonElement... values) {
        JsonArray list = new JsonArray();
        List.of(values).forEach(list::add);
        return list;
    }

    private static JsonObject object(String member, JsonElement value) {
        JsonObject object = new JsonObject();
        object.add(member, value);
        return object;
    }

    private void addOutput(String place, JsonElement element) {
        SuiteOutput output = SuiteOutput.of(element);
        if (output == null) {
            mNotes.add(place, "dropped, it needs a format of " + SuiteOutput.FORMATS.keySet()
                    + ", width and height");
        } else {
            mOutputs.add(output);
        }
    }
}
