package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;

import java.nio.charset.StandardCharsets;
import java.nio.file.Path;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** Reads a request file. Unknown fields and invalid values are errors. */
public final class RequestFileReader {
    private static final int LONGEST_PROPERTY = 91;

    private final Path mFile;
    private final Path mOtherPhoto;
    private final Mistakes mMistakes;

    private RequestFileReader(Path file, Path otherPhoto, Mistakes mistakes) {
        mFile = file;
        mOtherPhoto = otherPhoto;
        mMistakes = mistakes;
    }

    /**
     * Reads a file. If `otherPhoto` is not null, it replaces the photo of the file, except for a recording,
     * which has no photo. Throws the first error.
     */
    public static RequestFile read(Path file, Path otherPhoto) throws MistakeException {
        Mistakes mistakes = new Mistakes(file.toString());
        RequestFile request = read(file, otherPhoto, mistakes);
        mistakes.throwFirst();
        return request;
    }

    /** Reads a file and adds its errors and warnings to `mistakes`. Returns null if there is an error. */
    public static RequestFile read(Path file, Path otherPhoto, Mistakes mistakes) {
        Json root = Json.read(file, mistakes);
        return root == null ? null : read(file, otherPhoto, root);
    }

    /** Checks `text` as if it were the content of `file`, which need not exist. Throws the first error. */
    public static void check(Path file, String text) throws MistakeException {
        Json root = Json.parse(file.toString(), 1, text);
        read(file, null, root);
        root.mistakes().throwFirst();
    }

    private static RequestFile read(Path file, Path otherPhoto, Json field) {
        Mistakes mistakes = field.mistakes();
        RequestFileReader reader = new RequestFileReader(file, otherPhoto, mistakes);
        boolean isRecorded = field.has(RecordedRequestReader.MARK);
        RequestFile request = mistakes.attempt(() -> isRecorded
                ? new RecordedRequestReader(file, mistakes).read(field) : reader.root(field), null);
        if (mistakes.errors() > 0) {
            return null;
        }
        if (!isRecorded) {
            // No advice on a recording: it documents what happened.
            RequestAdvice.give(request, field);
        }
        return request;
    }

    private RequestFile root(Json field) throws MistakeException {
        Json members = field.allowing("$schema", "about", "request", "client", "properties",
                "algorithms", "fullAsync", "photo", "frames", "inputs", "outputs");
        // Only editors use the schema.
        members.string("$schema", "");
        Json request = mMistakes.attempt(
                () -> members.require("request").allowing("id", "type"), null);
        long id = request == null ? 0 : mMistakes.attempt(
                () -> request.require("id").integer(Long.MIN_VALUE, Long.MAX_VALUE), 0L);
        boolean fullAsync = members.bool("fullAsync", false);
        FrameSetPlan frames = mMistakes.attempt(() -> FrameSetReader.read(members.require("frames")), null);
        if (frames != null) {
            putServiceValues(members, fullAsync, frames);
        }
        ImagePlanReader images =
                new ImagePlanReader(mFile, mMistakes, frames == null ? -1 : frames.frames().size());
        List<ImagePlan> inputs = mMistakes.attempt(() -> images.inputs(members.require("inputs")), null);
        List<ImagePlan> outputs = mMistakes.attempt(() -> images.outputs(members.require("outputs")), null);
        Json client = members.object("client", "clientId", "algoContextIndex", "imageFormat");
        return new RequestFile(mFile, members.string("about", ""), id,
                request == null ? "" : request.string("type", "capture"),
                client.integer("clientId", Long.MIN_VALUE, Long.MAX_VALUE, 1L),
                client.integer("algoContextIndex", Integer.MIN_VALUE, Integer.MAX_VALUE, 0),
                client.integer("imageFormat", 0, Integer.MAX_VALUE, releaseFormat(inputs)),
                properties(members), fullAsync, mMistakes.attempt(() -> photo(members, field, images), null),
                frames, inputs, outputs, field);
    }

    private static int releaseFormat(List<ImagePlan> inputs) {
        PixelFormat format = inputs == null || inputs.isEmpty() ? null : inputs.get(0).format();
        return (format == null ? PixelFormat.NV21 : format).platformCode();
    }

    // Adds the values that the service puts into a request's first composition.
    private void putServiceValues(Json members, boolean fullAsync, FrameSetPlan frames) {
        List<String> algorithms = members.has("algorithms")
                ? mMistakes.attempt(members.get("algorithms")::strings, List.of()) : null;
        if (frames.frames().isEmpty()) {
            for (String needing : fullAsync ? List.of("fullAsync", "algorithms") : List.of("algorithms")) {
                if (members.has(needing)) {
                    mMistakes.add(members.get(needing)
                            .error("requires at least one frame, whose composition gets the value"));
                }
            }
            return;
        }
        Map<String, Object> first = frames.frames().get(0).composition();
        putOnce(first, "isFullAsync", fullAsync ? 1 : 0, members.get("fullAsync"));
        if (algorithms != null) {
            putOnce(first, "orlu.control.algoType", algorithms.toArray(new String[0]),
                    members.get("algorithms"));
        }
    }

    private void putOnce(Map<String, Object> composition, String key, Object value, Json field) {
        if (composition.putIfAbsent(key, value) != null && field != null) {
            mMistakes.add(field.error("the first composition already sets " + key));
        }
    }

    private Map<String, String> properties(Json members) {
        Map<String, String> properties = new LinkedHashMap<>();
        Map<String, Json> fields = members.has("properties")
                ? mMistakes.attempt(members.get("properties")::members, Map.of()) : Map.of();
        fields.forEach((name, field) -> mMistakes.attempt(() -> {
            if (name.isEmpty() || tooLong(field.string())) {
                throw field.error("expected a name, and a value of at most " + LONGEST_PROPERTY + " bytes");
            }
            properties.put(name, field.string());
        }));
        return properties;
    }

    private static boolean tooLong(String property) {
        return property.getBytes(StandardCharsets.UTF_8).length > LONGEST_PROPERTY;
    }

    private Path photo(Json members, Json root, ImagePlanReader images)
            throws MistakeException {
        if (mOtherPhoto != null) {
            return mOtherPhoto;
        }
        if (!members.has("photo")) {
            if (images.needsPhoto()) {
                throw root.error("missing field photo; the inputs are made from it");
            }
            return null;
        }
        return ImageFileReader.existing(mFile, members.get("photo"));
    }
}
