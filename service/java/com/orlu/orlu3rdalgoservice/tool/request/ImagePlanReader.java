package com.orlu.orlu3rdalgoservice.tool.request;

import java.util.ArrayList;
import java.util.List;

/** Reads "inputs" and "outputs" of a request file. */
final class ImagePlanReader {
    private static final int LARGEST_SIDE = 8192;
    private static final int LARGEST_CAPACITY = 1 << 29;
    private static final int MOST_PER_FRAME = 4;

    private final int mFrames;

    ImagePlanReader(int frames) {
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
        JsonMembers members = field.members("format", "name", "memory", "stride", "bits", "perFrame");
        int perFrame = members.integer("perFrame", 1, MOST_PER_FRAME, 1);
        ImagePlan image = image(members, 0);
        for (int i = 0; i < mFrames * perFrame; ++i) {
            images.add(image.withFrame(i / perFrame));
        }
        return images;
    }

    private ImagePlan input(JsonField field, int index) throws RequestFileException {
        JsonMembers members = field.members("format", "name", "memory", "stride", "bits", "frame");
        if (mFrames == 0) {
            throw field.error("there is no frame to take the pixels from");
        }
        return image(members, members.integer("frame", 0, mFrames - 1, Math.min(index, mFrames - 1)));
    }

    List<ImagePlan> outputs(JsonField field) throws RequestFileException {
        List<ImagePlan> images = new ArrayList<>();
        for (JsonField output : field.list()) {
            images.add(image(output.members(
                    "format", "name", "memory", "width", "height", "stride", "capacity", "bits"), 0));
        }
        return images;
    }

    private ImagePlan image(JsonMembers members, int frame) throws RequestFileException {
        JsonField formatField = members.require("format");
        PixelFormat format = PixelFormat.named(formatField.string());
        if (format == null) {
            throw formatField.needs("one of " + PixelFormat.names());
        }
        int bits = members.integer("bits", 8, format == PixelFormat.MIPI_RAW10 ? 10 : 16, 10);
        return new ImagePlan(format, members.string("name", format.name()), hardware(members),
                side(members, "width"), side(members, "height"),
                members.integer("stride", 0, LARGEST_SIDE * 4, 0),
                members.integer("capacity", 0, LARGEST_CAPACITY, 0), bits, frame);
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
