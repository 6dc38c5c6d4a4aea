package com.orlu.orlu3rdalgoservice.tool.request;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/** Reads "inputs" and "outputs" of a request file. */
final class ImagePlanReader {
    private static final int LARGEST_SIDE = 8192;
    private static final int LARGEST_CAPACITY = 1 << 29;
    private static final int MOST_PER_FRAME = 4;
    static final int USUAL_BITS = 10;

    private static final int LARGEST_STRIDE = ImageFileReader.LARGEST_SIDE * 4;

    private final Path mRequestFile;
    private final int mFrames;

    /** Files of images are looked for beside the request file. */
    ImagePlanReader(Path requestFile, int frames) {
        mRequestFile = requestFile;
        mFrames = frames;
    }

    /** A list of images, or one description that every frame has an image of. */
    List<ImagePlan> inputs(JsonField field) throws RequestFileException {
        List<ImagePlan> images = new ArrayList<>();
        if (field.isList()) {
            List<JsonField> fields = field.list();
            for (int i = 0; i < fields.size(); ++i) {
                images.add(input(fields.get(i), i));
            }
            return images;
        }
        JsonMembers members = members(field, "perFrame");
        int perFrame = members.integer("perFrame", 1, MOST_PER_FRAME, 1);
        int count = mFrames * perFrame;
        List<JsonField> files = members.has("file") ? members.get("file").list(count)
                : Collections.nCopies(count, null);
        for (int i = 0; i < count; ++i) {
            images.add(image(field, members, files.get(i)).withFrame(i / perFrame));
        }
        return images;
    }

    private ImagePlan input(JsonField field, int index) throws RequestFileException {
        JsonMembers members = members(field, "frame");
        if (mFrames == 0) {
            throw field.error("there is no frame that it could belong to");
        }
        int frame = members.integer("frame", 0, mFrames - 1, Math.min(index, mFrames - 1));
        return image(field, members, members.get("file")).withFrame(frame);
    }

    private static JsonMembers members(JsonField field, String last) throws RequestFileException {
        JsonMembers members = field.members("format", "name", "memory", "stride", "bits", "file", "width",
                "height", "offset", "planes", last);
        if (!members.has("file")) {
            for (String member : List.of("width", "height", "offset", "planes")) {
                if (members.has(member)) {
                    throw members.get(member).error(
                            "needs the field file beside it: the pixels are a photo's");
                }
            }
        }
        return members;
    }

    List<ImagePlan> outputs(JsonField field) throws RequestFileException {
        List<ImagePlan> images = new ArrayList<>();
        for (JsonField output : field.list()) {
            images.add(image(output, output.members("format", "name", "memory", "width", "height", "stride",
                    "capacity", "bits"), null));
        }
        return images;
    }

    // The file's field is null for an image that comes from none.
    private ImagePlan image(JsonField field, JsonMembers members, JsonField file)
            throws RequestFileException {
        JsonField formatField = members.require("format");
        PixelFormat format = PixelFormat.named(formatField.string());
        if (format == null) {
            throw formatField.needs("one of " + PixelFormat.names());
        }
        ImageFileReader source =
                file == null ? null : new ImageFileReader(mRequestFile, file, members, format);
        ImagePlan image = new ImagePlan(format, members.string("name", format.name()), hardware(members),
                source == null ? side(members, "width") : source.width(),
                source == null ? side(members, "height") : source.height(),
                members.integer("stride", 0, LARGEST_STRIDE, 0),
                members.integer("capacity", 0, LARGEST_CAPACITY, 0),
                members.integer("bits", 8, format.mostBits(),
                        source == null ? USUAL_BITS : Math.min(source.bits(), format.mostBits())),
                0, null, field.place());
        if (source == null) {
            return image;
        }
        ImagePlan sized = image.sized(source.width(), source.height());
        return sized.withFile(source.file(sized.strideBytes()));
    }

    private static int side(JsonMembers members, String name) throws RequestFileException {
        int side = members.integer(name, 0, LARGEST_SIDE, 0);
        if (side % 2 != 0) {
            throw members.get(name).needs("an even number");
        }
        return side;
    }

    private static boolean hardware(JsonMembers members) throws RequestFileException {
        String memory = members.string("memory", "shared");
        if (!memory.equals("shared") && !memory.equals("hardware")) {
            throw members.get("memory").needs("\"shared\" or \"hardware\"");
        }
        return memory.equals("hardware");
    }
}
