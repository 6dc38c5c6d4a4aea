package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/** Reads "inputs" and "outputs" of a request file. */
final class ImagePlanReader {
    private static final int LARGEST_CAPACITY = 1 << 29;
    static final int USUAL_BITS = 10;
    private static final List<String> MEMORIES = List.of("shared", "hardware");

    private static final int LARGEST_STRIDE = Limits.FILE_SIDE * 4;

    private final Path mRequestFile;
    private final Mistakes mMistakes;
    private final int mFrames;
    private boolean mNeedsPhoto;

    /** Paths are relative to the folder of `requestFile`. `frames` is the number of frames, -1 if unknown. */
    ImagePlanReader(Path requestFile, Mistakes mistakes, int frames) {
        mRequestFile = requestFile;
        mMistakes = mistakes;
        mFrames = frames;
    }

    /** Reads a list of images, or one description for the images of all frames. */
    List<ImagePlan> inputs(Json field) throws MistakeException {
        List<ImagePlan> images = new ArrayList<>();
        if (field.isList()) {
            List<Json> fields = field.list();
            for (int i = 0; i < fields.size(); ++i) {
                int index = i;
                mMistakes.attempt(() -> images.add(input(fields.get(index), index)));
            }
            return images;
        }
        Json members = members(field, "perFrame");
        int perFrame = members.integer("perFrame", 1, Limits.IMAGES, 1);
        // An unknown number of frames, -1, counts as one frame.
        int count = Math.abs(mFrames) * perFrame;
        Json file = members.get("file");
        List<Json> none = Collections.nCopies(count, null);
        List<Json> files = file == null || mFrames < 0 ? none
                : mMistakes.attempt(() -> file.list(count), none);
        for (int i = 0; i < count; ++i) {
            images.add(image(field, members, files.get(i), i / perFrame));
        }
        return images;
    }

    /** Returns whether any input gets its pixels from a photo. */
    boolean needsPhoto() {
        return mNeedsPhoto;
    }

    private ImagePlan input(Json field, int index) throws MistakeException {
        Json members = members(field, "frame");
        if (mFrames == 0) {
            throw field.error("the request has no frame for this input");
        }
        int last = mFrames < 0 ? Integer.MAX_VALUE : mFrames - 1;
        int frame = members.integer("frame", 0, last, Math.min(index, last));
        return image(field, members, members.get("file"), frame);
    }

    private Json members(Json field, String last) throws MistakeException {
        Json members = field.allowing("format", "name", "memory", "stride", "bits", "file", "width",
                "height", "offset", "planes", last);
        if (!members.has("file")) {
            // A description with one of these fields needs a file, so it does not ask for a photo.
            List<String> ofFiles = List.of("width", "height", "offset", "planes");
            mNeedsPhoto |= mFrames != 0 && ofFiles.stream().noneMatch(members::has);
            for (String member : ofFiles) {
                if (members.has(member)) {
                    mMistakes.add(members.get(member).error(
                            "requires the field \"file\"; without it, the pixels come from a photo"));
                }
            }
        }
        return members;
    }

    List<ImagePlan> outputs(Json field) throws MistakeException {
        List<ImagePlan> images = new ArrayList<>();
        for (Json output : field.list()) {
            mMistakes.attempt(() -> images.add(image(output, output.allowing("format", "name", "memory",
                    "width", "height", "stride", "capacity", "bits"), null, 0)));
        }
        return images;
    }

    // Reads no image file if `file` is null.
    private ImagePlan image(Json field, Json members, Json file, int frame) throws MistakeException {
        PixelFormat format = mMistakes.attempt(() -> format(members), null);
        // Continues after a mistake, to note further mistakes.
        boolean isHardware = hardware(members);
        int before = mMistakes.errors();
        ImageFileReader source = file == null || format == null ? null
                : mMistakes.attempt(() -> new ImageFileReader(mRequestFile, file, members, format), null);
        boolean isFileWrong = mMistakes.errors() > before;
        ImagePlan image = new ImagePlan(format, members.string("name", String.valueOf(format)), isHardware,
                source != null ? source.width() : file == null ? side(members, "width") : 0,
                source != null ? source.height() : file == null ? side(members, "height") : 0,
                members.integer("stride", 0, LARGEST_STRIDE, 0),
                members.integer("capacity", 0, LARGEST_CAPACITY, 0),
                bits(members, format, source), frame, null, field);
        if (source == null || isFileWrong) {
            return image;
        }
        ImagePlan sized = image.sized(source.width(), source.height());
        return sized.withFile(source.file(sized.strideBytes()));
    }

    private static PixelFormat format(Json members) throws MistakeException {
        Json field = members.require("format");
        PixelFormat format = PixelFormat.named(field.string());
        if (format == null) {
            throw field.needsName("one of " + String.join(", ", PixelFormat.names()), PixelFormat.names());
        }
        return format;
    }

    private static int bits(Json members, PixelFormat format, ImageFileReader source) {
        int most = format == null ? Short.SIZE : format.mostBits();
        return members.integer("bits", 8, most, source == null ? USUAL_BITS : Math.min(source.bits(), most));
    }

    /** Returns a width or height in pixels; 0 if the member is absent. Reports an odd number as a mistake. */
    static int side(Json members, String name) {
        int side = members.integer(name, 0, Limits.SIDE, 0);
        if (side % 2 != 0) {
            members.mistakes().add(members.get(name).needs("an even number"));
        }
        return side;
    }

    private boolean hardware(Json members) {
        String memory = members.string("memory", MEMORIES.get(0));
        if (!MEMORIES.contains(memory)) {
            mMistakes.add(members.get("memory").needsName("\"shared\" or \"hardware\"", MEMORIES));
        }
        return memory.equals(MEMORIES.get(1));
    }
}
