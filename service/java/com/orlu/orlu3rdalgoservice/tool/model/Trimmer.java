package com.orlu.orlu3rdalgoservice.tool.model;

import com.google.gson.Gson;
import com.google.gson.GsonBuilder;
import com.google.gson.JsonObject;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Set;
import java.util.TreeSet;

/**
 * Writes a smaller copy of a recording. Without some frames the request is another one, so that what came of
 * it is left out then, and likewise where images are cropped. Without pixels what came of it stays, but for
 * the output's pixels.
 */
public final class Trimmer {
    private static final Gson GSON = new GsonBuilder().disableHtmlEscaping().serializeNulls().create();
    private static final Set<String> WHAT_CAME_OF_IT =
            Set.of("processed", "updating", "updated", "put", "result", "events");

    private final RecordedRequest mRecorded;
    private final Set<Integer> mFrames;
    private final boolean mKeepsPixels;
    private final CropArea mCrop;
    private final List<String> mNotes = new ArrayList<>();
    private final ByteArrayOutputStream mLines = new ByteArrayOutputStream();

    /** Keeps these frames, all when there are none here, and of each image this area, all of it for null. */
    public Trimmer(RecordedRequest recorded, Set<Integer> frames, boolean keepsPixels, CropArea crop) {
        mRecorded = recorded;
        mFrames = new TreeSet<>(frames);
        mKeepsPixels = keepsPixels;
        mCrop = crop;
    }

    /** What the copy has otherwise than one might think, known when it is written. */
    public List<String> notes() {
        return mNotes;
    }

    /** Writes the copy into a folder that must not be there. */
    public void write(Path folder) throws MistakeException, IOException {
        int frames = mRecorded.parts("frame").size();
        int inputs = mRecorded.parts("input").size();
        mRecorded.toRequest();
        for (int frame : mFrames) {
            if (frame < 0 || frame >= frames) {
                throw new IllegalArgumentException(
                        "--frames: the recording has the frames 0 to " + (frames - 1) + ", not " + frame);
            }
        }
        if (!mFrames.isEmpty() && inputs % frames != 0) {
            throw new IllegalArgumentException("--frames: which of the " + inputs
                    + " inputs belong to which of the " + frames + " frames is not known");
        }
        if (Files.exists(folder)) {
            throw new IllegalArgumentException("--out: " + folder + " is there already");
        }
        if (mCrop != null) {
            checkCrop();
        }
        Files.createDirectories(folder);
        writeParts(folder, Math.max(1, inputs / Math.max(1, frames)));
        Files.write(folder.resolve(RecordedRequest.LINES), mLines.toByteArray());
    }

    private void writeParts(Path folder, int inputsPerFrame) throws MistakeException, IOException {
        List<Integer> counts = new ArrayList<>(List.of(0, 0));
        for (JsonObject part : mRecorded.parts()) {
            String name = part.get("part").getAsString();
            boolean isOther = !mFrames.isEmpty() || mCrop != null;
            if (name.equals("eventsAt") || isOther && WHAT_CAME_OF_IT.contains(name)) {
                continue;
            }
            if (name.equals("request") && isOther) {
                // Behind those of the copy that it is a copy of.
                write(trimmed());
            }
            JsonObject copy = part.deepCopy();
            if (name.equals("frame") && !renumber(copy, counts, 0, 1)
                    || name.equals("input") && !renumber(copy, counts, 1, inputsPerFrame)) {
                continue;
            }
            ImageCrop crop = null;
            if (mCrop != null && (name.equals("input") || name.equals("output"))) {
                crop = crop(part, name, copy);
            }
            copyBytes(part, copy, folder, crop);
            write(copy);
        }
    }

    // Goes before the request: what a reader may not take for the whole of it.
    private JsonObject trimmed() {
        JsonObject part = new JsonObject();
        part.addProperty("part", "trimmed");
        if (!mFrames.isEmpty()) {
            part.add("frames", GSON.toJsonTree(mFrames));
        }
        if (mCrop != null) {
            part.addProperty("crop", mCrop.toString());
        }
        return part;
    }

    // Every image is tried before anything is written.
    private void checkCrop() {
        for (RecordedImage image : mRecorded.images("input")) {
            if (ImageCrop.of(image, mCrop, nameOf(image.part(), "input")) == null) {
                mNotes.add(nameOf(image.part(), "input") + " is " + image.format() + ": left as it is");
            }
        }
        for (RecordedImage image : mRecorded.images("output")) {
            if (!hasSizeOfInputs(image)) {
                mNotes.add(nameOf(image.part(), "output") + " is not as large as the inputs: left as it is");
            } else {
                ImageCrop.of(image, mCrop, nameOf(image.part(), "output"));
            }
        }
        Set<String> tags = SizeTags.of(mRecorded.parts("frame"));
        if (!tags.isEmpty()) {
            mNotes.add(
                    "these tags hold sizes or places and are left as they are: " + String.join(", ", tags));
        }
    }

    private static String nameOf(JsonObject part, String name) {
        return name + " " + part.get("index");
    }

    private boolean hasSizeOfInputs(RecordedImage image) {
        List<RecordedImage> inputs = mRecorded.images("input");
        return !inputs.isEmpty() && inputs.get(0).number("width") == image.number("width")
                && inputs.get(0).number("height") == image.number("height");
    }

    // Puts the smaller description into the copy. Returns how its bytes are cut, null when they are not.
    private ImageCrop crop(JsonObject part, String name, JsonObject copy) {
        RecordedImage image = new RecordedImage(mRecorded, part);
        if (name.equals("output") && !hasSizeOfInputs(image)) {
            return null;
        }
        ImageCrop crop = ImageCrop.of(image, mCrop, nameOf(part, name));
        if (crop != null) {
            crop.part().entrySet().stream().filter(field -> !field.getKey().equals("index"))
                    .forEach(field -> copy.add(field.getKey(), field.getValue()));
        } else if (name.equals("output")) {
            copy.addProperty("width", mCrop.width());
            copy.addProperty("height", mCrop.height());
        }
        return crop;
    }

    // Returns whether the part is kept.
    private boolean renumber(JsonObject part, List<Integer> counts, int which, int perFrame) {
        if (!mFrames.isEmpty() && !mFrames.contains(part.get("index").getAsInt() / perFrame)) {
            return false;
        }
        part.addProperty("index", counts.get(which));
        counts.set(which, counts.get(which) + 1);
        return true;
    }

    private void copyBytes(JsonObject part, JsonObject copy, Path folder, ImageCrop crop)
            throws MistakeException, IOException {
        if (!part.has("file")) {
            return;
        }
        String name = part.get("part").getAsString();
        if (!mKeepsPixels && !name.equals("events")) {
            copy.remove("file");
            copy.remove("crc");
            copy.addProperty("kept", "no: trimmed");
            return;
        }
        byte[] bytes = mRecorded.checkedBytes(part.get("file").getAsString(), part.get("crc").getAsString());
        String file = copy.has("index") && name.equals("input") ? "input" + copy.get("index") + ".bin"
                : part.get("file").getAsString();
        copy.addProperty("file", file);
        if (crop != null) {
            bytes = crop.bytes(bytes);
            copy.addProperty("crc", RecordedRequest.check(bytes, 0, bytes.length));
        }
        Files.write(folder.resolve(file), bytes);
        if (name.equals("events") && mKeepsPixels) {
            copyHanded(folder);
        }
    }

    // What the library saw of the images, where that is in files of its own.
    private void copyHanded(Path folder) throws MistakeException, IOException {
        for (Event event : mRecorded.events().events("pixels")) {
            String file = event.text("file");
            if (!file.isEmpty() && Files.isRegularFile(mRecorded.folder().resolve(file))) {
                Files.write(folder.resolve(file), mRecorded.checkedBytes(file, event.text("crc")));
            }
        }
    }

    private void write(JsonObject part) {
        byte[] text = GSON.toJson(part).getBytes(StandardCharsets.UTF_8);
        String check = RecordedRequest.check(text, 0, text.length) + " ";
        mLines.writeBytes(check.getBytes(StandardCharsets.US_ASCII));
        mLines.writeBytes(text);
        mLines.write('\n');
    }
}
