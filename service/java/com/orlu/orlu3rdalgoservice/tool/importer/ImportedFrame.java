package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.request.RequestTags;

import java.util.Map;
import java.util.TreeMap;

/** The tags of one frame, with values for JsonWriter. */
public final class ImportedFrame {
    private final Map<String, Object> mTags = new TreeMap<>();

    /**
     * Adds a tag. If the tag has a different value already, replaces that value and adds a note. If the new
     * value is invalid for the tag in a request file, only adds a note.
     */
    void put(String tag, Object value, String place, Notes notes) {
        String text = JsonWriter.line(value);
        String problem = RequestTags.problemOf(tag, text);
        if (problem == null) {
            Object before = mTags.put(tag, value);
            if (before != null && !JsonWriter.line(before).equals(text)) {
                notes.add(place, tag + " given twice; " + JsonWriter.line(before) + " dropped");
            }
        } else {
            notes.add(place, tag + " dropped; " + problem);
        }
    }

    /** Adds those tags of another frame that this frame lacks. */
    void fillFrom(ImportedFrame other) {
        other.mTags.forEach(mTags::putIfAbsent);
    }

    boolean has(String tag) {
        return mTags.containsKey(tag);
    }

    public Map<String, Object> tags() {
        return mTags;
    }
}
