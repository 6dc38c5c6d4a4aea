package com.orlu.orlu3rdalgoservice.tool.request;

import com.google.gson.JsonElement;

import android.hardware.camera2.impl.CameraMetadataNative;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;

/** What a request file can hold of tags, for those who write one. */
public final class RequestTags {
    private RequestTags() {
    }

    /** Why a request file can't hold this value of a tag, null when it can. */
    public static String problemOf(String tag, JsonElement value) {
        Mistakes mistakes = new Mistakes("");
        try {
            JsonField field = new JsonField(mistakes, "", JsonTree.withPlaces(value));
            Object read = TagValues.ofTag(tag, field, 0);
            // What is wrong with an element says more than that the tag does not take the rest.
            mistakes.throwFirst();
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
