package com.orlu.orlu3rdalgoservice.tool.request;

import java.nio.charset.StandardCharsets;
import java.nio.file.Path;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** Reads a request file. Whatever it does not know, or can't use, is a RequestFileException. */
public final class RequestFileReader {
    private static final int LONGEST_PROPERTY = 91;

    private final Path mFile;
    private final Path mOtherPhoto;

    private RequestFileReader(Path file, Path otherPhoto) {
        mFile = file;
        mOtherPhoto = otherPhoto;
    }

    /** Reads a file; a photo other than null replaces the file's own. */
    public static RequestFile read(Path file, Path otherPhoto) throws RequestFileException {
        RequestFileReader reader = new RequestFileReader(file, otherPhoto);
        return reader.root(new JsonField(file.toString(), "", StrictJson.read(file)));
    }

    private RequestFile root(JsonField field) throws RequestFileException {
        JsonMembers members = field.members("about", "request", "client", "properties", "algorithms",
                "fullAsync", "photo", "frames", "inputs", "outputs");
        JsonMembers request = members.require("request").members("id", "type");
        boolean fullAsync = members.bool("fullAsync", false);
        FrameSetPlan frames = FrameSetReader.read(members.require("frames"));
        putServiceValues(members, fullAsync, frames);
        ImagePlanReader images = new ImagePlanReader(mFile, frames.frames().size());
        List<ImagePlan> inputs = images.inputs(members.require("inputs"));
        List<ImagePlan> outputs = images.outputs(members.require("outputs"));
        JsonMembers client = client(members);
        return new RequestFile(mFile, members.string("about", ""),
                request.require("id").integer(Long.MIN_VALUE, Long.MAX_VALUE),
                request.string("type", "capture"),
                client.integer("clientId", Long.MIN_VALUE, Long.MAX_VALUE, 1L),
                client.integer("algoContextIndex", Integer.MIN_VALUE, Integer.MAX_VALUE, 0),
                client.integer("imageFormat", 0, Integer.MAX_VALUE, releaseFormat(inputs)),
                properties(members), fullAsync, photo(members, field, inputs), frames, inputs, outputs);
    }

    private static JsonMembers client(JsonMembers members) throws RequestFileException {
        return members.has("client")
                ? members.get("client").members("clientId", "algoContextIndex", "imageFormat")
                : new JsonMembers(null, Map.of());
    }

    private static int releaseFormat(List<ImagePlan> inputs) {
        return inputs.isEmpty() ? PixelFormat.NV21.platformCode() : inputs.get(0).format().platformCode();
    }

    // What the service puts into the first composition of every request.
    private static void putServiceValues(JsonMembers members, boolean fullAsync, FrameSetPlan frames)
            throws RequestFileException {
        if (frames.frames().isEmpty()) {
            for (String needing : fullAsync ? List.of("fullAsync", "algorithms") : List.of("algorithms")) {
                if (members.has(needing)) {
                    throw members.get(needing).error("needs a frame, whose composition says it");
                }
            }
            return;
        }
        Map<String, Object> first = frames.frames().get(0).composition();
        putOnce(first, "isFullAsync", fullAsync ? 1 : 0, members.get("fullAsync"));
        if (members.has("algorithms")) {
            JsonField algorithms = members.get("algorithms");
            putOnce(first, "orlu.control.algoType", algorithms.strings().toArray(new String[0]), algorithms);
        }
    }

    private static void putOnce(Map<String, Object> composition, String key, Object value, JsonField field)
            throws RequestFileException {
        if (composition.putIfAbsent(key, value) != null && field != null) {
            throw field.error("the first composition has " + key + " already");
        }
    }

    private static Map<String, String> properties(JsonMembers members) throws RequestFileException {
        Map<String, String> properties = new LinkedHashMap<>();
        if (members.has("properties")) {
            for (Map.Entry<String, JsonField> property : members.get("properties").anyMembers().entrySet()) {
                JsonField field = property.getValue();
                if (property.getKey().isEmpty() || tooLong(field.string())) {
                    throw field.error("needs a name, and a value of at most " + LONGEST_PROPERTY
                            + " bytes");
                }
                properties.put(property.getKey(), field.string());
            }
        }
        return properties;
    }

    private static boolean tooLong(String property) {
        return property.getBytes(StandardCharsets.UTF_8).length > LONGEST_PROPERTY;
    }

    private Path photo(JsonMembers members, JsonField root, List<ImagePlan> inputs)
            throws RequestFileException {
        if (mOtherPhoto != null) {
            return mOtherPhoto;
        }
        if (!members.has("photo")) {
            if (inputs.stream().anyMatch(image -> image.file() == null)) {
                throw root.error("needs the field photo: the inputs are made of one");
            }
            return null;
        }
        return ImageFileReader.existing(mFile, members.get("photo"), "photo");
    }
}
