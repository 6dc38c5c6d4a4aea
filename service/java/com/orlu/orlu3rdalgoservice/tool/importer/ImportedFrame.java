package com.orlu.orlu3rdalgoservice.tool.importer;

import com.google.gson.JsonElement;
import com.google.gson.JsonPrimitive;

import com.orlu.orlu3rdalgoservice.tool.request.RequestTags;

import java.util.Map;
import java.util.TreeMap;

/** The tags of one frame, in the form of a request file. */
final class ImportedFrame {
    private final Map<String, JsonElement> mTags = new TreeMap<>();

    /** Takes a tag whose value has the tag's type, and notes one that has not. */
    void put(String tag, JsonElement value, String place, Notes notes) {
        String problem = RequestTags.problemOf(tag, value);
        if (problem == null) {
            JsonElement before = mTags.put(tag, value);
            if (before != null && !before.equals(value)) {
                notes.add(place, tag + " is there again: " + before + " dropped");
            }
        } else {
            notes.add(place, tag + " dropped, " + problem);
        }
    }

    /** Likewise; a number that JSON has no form for, such as one over zero, goes in by its name. */
    void put(String tag, double value, String place, Notes notes) {
        put(tag, Double.isFinite(value) ? new JsonPrimitive(value)
                : new JsonPrimitive(Double.toString(value)), place, notes);
    }

    /** Takes the tags of another that this one has not. */
    void fillFrom(ImportedFrame other) {
        other.mTags.forEach(mTags::putIfAbsent);
    }

    boolean has(String tag) {
        return mTags.containsKey(tag);
    }

    Map<String, JsonElement> tags() {
        return mTags;
    }
}
