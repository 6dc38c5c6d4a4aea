package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.CameraMetadataNative;
import android.hardware.camera2.impl.TagTable;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** Reads the request file of a recording. Warns about values that can't be recreated, and omits them. */
final class RecordedRequestReader {
    /** The JSON member that only the request file of a recording contains. */
    static final String MARK = "recording";
    private static final String FORMAT = "orlu-recording";
    private static final int VERSION = 2;
    private static final int CAMERA_IMAGE_FORMAT = 35;
    private static final int MOST_FRAMES = 1000;
    private static final int MOST_IMAGES = 4000;
    /** Limit of the total size of all images, in bytes: all are in memory while the request runs. */
    private static final long MOST_IMAGE_BYTES = 1L << 31;

    private final Path mFile;
    private final Mistakes mMistakes;
    private long mImageBytes;

    RecordedRequestReader(Path file, Mistakes mistakes) {
        mFile = file;
        mMistakes = mistakes;
    }

    RequestFile read(Json root) throws MistakeException {
        root.allowing("about", MARK, "trimmed", "request", "client", "properties", "frames", "inputs",
                "outputs");
        checkVersion(root.require(MARK));
        Json request = root.require("request").allowing("id", "type");
        Map<String, String> properties = new LinkedHashMap<>();
        for (Map.Entry<String, Json> property : root.require("properties").members().entrySet()) {
            properties.put(property.getKey(), property.getValue().string());
        }
        List<FramePlan> frames = new ArrayList<>();
        for (Json frame : limited(root.require("frames"), MOST_FRAMES)) {
            frames.add(frame(frame.allowing("captureResult", "composition")));
        }
        boolean fullAsync = !frames.isEmpty()
                && frames.get(0).composition().get("isFullAsync") instanceof Integer flag && flag != 0;
        Json client = root.object("client", "clientId", "algoContextIndex");
        return new RequestFile(mFile, root.string("about", ""),
                request.require("id").integer(Long.MIN_VALUE, Long.MAX_VALUE), request.require("type")
                .string(),
                client.integer("clientId", Long.MIN_VALUE, Long.MAX_VALUE, 1L),
                client.integer("algoContextIndex", Integer.MIN_VALUE, Integer.MAX_VALUE, 0),
                CAMERA_IMAGE_FORMAT, properties, fullAsync, null, new FrameSetPlan(frames, 0, 0, 0, 0),
                images(root.require("inputs")), images(root.require("outputs")), root);
    }

    private static void checkVersion(Json header) throws MistakeException {
        String format = header.require("format").string();
        int version = header.require("version").integer(0, Integer.MAX_VALUE);
        if (!format.equals(FORMAT) || version != VERSION) {
            throw header.error("expected " + FORMAT + " version " + VERSION + ", found " + Json.cut(format)
                    + " version " + version);
        }
    }

    private static List<Json> limited(Json list, int most) throws MistakeException {
        if (list.list().size() > most) {
            throw list.error("expected at most " + most + " elements, found " + list.list().size());
        }
        return list.list();
    }

    private FramePlan frame(Json frame) throws MistakeException {
        CameraMetadataNative captureResult = new CameraMetadataNative();
        values(frame.require("captureResult")).forEach((tag, value) -> {
            if (TagTable.typeOf(tag) == null) {
                frame.get("captureResult").warn(tag, "unknown tag; left out");
                return;
            }
            try {
                captureResult.set(tag, value);
            } catch (IllegalArgumentException e) {
                frame.get("captureResult").warn(tag, e.getMessage());
            }
        });
        return new FramePlan(captureResult, values(frame.require("composition")), 0, 0, 1, null);
    }

    private Map<String, Object> values(Json object) throws MistakeException {
        Map<String, Object> values = new LinkedHashMap<>();
        object.members().forEach((name, field) -> {
            if (field.has("class")) {
                field.warn("left out; a value of the class " + field.get("class").found());
            } else {
                mMistakes.attempt(() -> values.put(name, TagValues.ofTyped(field)), null);
            }
        });
        return values;
    }

    private List<ImagePlan> images(Json list) throws MistakeException {
        List<ImagePlan> images = new ArrayList<>();
        for (Json image : limited(list, MOST_IMAGES)) {
            mMistakes.attempt(() -> images.add(image(image)));
        }
        return images;
    }

    private ImagePlan image(Json image) throws MistakeException {
        ImageLayout layout = ImageLayout.read(mFile.resolveSibling(""), image);
        mImageBytes += layout.size();
        if (mImageBytes > MOST_IMAGE_BYTES) {
            throw image.error("expected at most " + MOST_IMAGE_BYTES + " bytes of images up to this one, "
                    + "found " + mImageBytes);
        }
        return ImagePlan.exact(layout, image);
    }
}
