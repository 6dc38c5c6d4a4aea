package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.CameraMetadataNative;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.List;
import java.util.Map;

/** Checks tag values before they are written to request files, and replaces tags in requests. */
public final class RequestTags {
    private RequestTags() {
    }

    /** Returns why this JSON text is invalid as a tag's value in a request file; null if it is valid. */
    public static String problemOf(String tag, String value) {
        try {
            Json field = Json.parse("", 0, value);
            Object read = TagValues.ofTag(tag, field, 0);
            // Must precede set(): a mistake noted by ofTag() is clearer than the exception that set() throws.
            field.mistakes().throwFirst();
            new CameraMetadataNative().set(tag, read);
            return null;
        } catch (MistakeException e) {
            // Only the problem: the caller adds the tag and its place.
            return e.mistake().problem();
        } catch (IllegalArgumentException e) {
            return e.getMessage();
        }
    }

    /**
     * Sets each "NAME=VALUE" in all frames: in the composition if it has the tag, else in the capture result.
     * VALUE is written as in a request file, or as unquoted text. Throws an IllegalArgumentException with a
     * message for people.
     */
    public static void set(RequestFile request, List<String> tags) {
        for (String tag : tags) {
            int equals = tag.indexOf('=');
            if (equals < 1) {
                throw new IllegalArgumentException("--tag: expected NAME=VALUE, found \"" + tag + '"');
            }
            set(request, tag.substring(0, equals), tag.substring(equals + 1));
        }
    }

    private static void set(RequestFile request, String name, String value) {
        try {
            Json field = value(value);
            List<FramePlan> frames = request.frames().frames();
            if (frames.isEmpty()) {
                throw new IllegalArgumentException(request.file() + " has no frames to set the tag in");
            }
            for (int i = 0; i < frames.size(); ++i) {
                Object read = TagValues.ofTag(name, field, i);
                field.mistakes().throwFirst();
                Map<String, Object> composition = frames.get(i).composition();
                if (composition.containsKey(name)) {
                    composition.put(name, read);
                } else {
                    frames.get(i).captureResult().set(name, read);
                }
            }
        } catch (MistakeException e) {
            throw new IllegalArgumentException("--tag " + name + ": " + e.mistake().problem(), e);
        } catch (IllegalArgumentException e) {
            throw new IllegalArgumentException("--tag " + name + ": " + e.getMessage(), e);
        }
    }

    private static Json value(String text) {
        try {
            return Json.parse("--tag", 0, text);
        } catch (MistakeException e) {
            return Json.of(text);
        }
    }
}
