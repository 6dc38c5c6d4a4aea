package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.CameraMetadataNative;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

/** Checks tags for writers of request files. */
public final class RequestTags {
    private RequestTags() {
    }

    /** Why a request file can't hold this JSON text as the value of a tag; null if it can. */
    public static String problemOf(String tag, String value) {
        try {
            Json field = Json.parse("", 0, value);
            Object read = TagValues.ofTag(tag, field, 0);
            // A mistake in an element is more precise than the refusal of the tag.
            field.mistakes().throwFirst();
            new CameraMetadataNative().set(tag, read);
            return null;
        } catch (MistakeException e) {
            // The caller knows the field and the file.
            return e.mistake().problem();
        } catch (IllegalArgumentException e) {
            return e.getMessage();
        }
    }
}
