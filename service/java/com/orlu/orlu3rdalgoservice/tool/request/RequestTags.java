package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.CameraMetadataNative;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

/** What a request file can hold of tags, for those who write one. */
public final class RequestTags {
    private RequestTags() {
    }

    /** Why a request file can't hold this JSON text as the value of a tag; null if it can. */
    public static String problemOf(String tag, String value) {
        try {
            Json field = Json.parse("", 0, value);
            Object read = TagValues.ofTag(tag, field, 0);
            // What is wrong with an element says more than that the tag does not take the rest.
            field.mistakes().throwFirst();
            new CameraMetadataNative().set(tag, read);
            return null;
        } catch (MistakeException e) {
            // The field and the file are the caller's.
            return e.mistake().problem();
        } catch (IllegalArgumentException e) {
            return e.getMessage();
        }
    }
}
