package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.request.RecordedFile;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import java.util.regex.Pattern;

/**
 * Writes a smaller copy of a run's folder. If frames are selected, images cropped or private facts removed,
 * the copy is a different request, so it has neither outcome nor events. If only the pixels are removed, the
 * copy keeps the events and the rest of the outcome.
 */
public final class Trimmer {
    private static final String TRIMMED = "no: trimmed";
    /** Types and names of tags that contain sizes of images or positions in them. */
    private static final List<String> SIZE_TYPES = List.of("rect", "regions", "faces");
    private static final Pattern SIZE_TAGS = Pattern.compile(
            "size|crop|region|rect|bounds|active.?array|faces|landmark", Pattern.CASE_INSENSITIVE);

    private final Run mRun;
    private final Set<Integer> mFrames;
    private final boolean mKeepsPixels;
    private final CropArea mCrop;
    private final PrivateFacts mPrivate;
    private final List<String> mNotes = new ArrayList<>();
    /** The crop of each image; null if its bytes are unchanged. */
    private final List<ImageCrop> mInputCrops = new ArrayList<>();
    private final List<ImageCrop> mOutputCrops = new ArrayList<>();
    private Path mFolder;

    /**
     * The copy keeps these frames, or all if `frames` is empty. Images that can be cropped are cropped to
     * `crop`, or stay whole if it is null. `withoutFacts` removes private facts; if null, they are kept.
     */
    public Trimmer(
            Run run, Set<Integer> frames, boolean keepsPixels, CropArea crop, PrivateFacts withoutFacts) {
        mRun = run;
        mFrames = new TreeSet<>(frames);
        mKeepsPixels = keepsPixels;
        mCrop = crop;
        mPrivate = withoutFacts;
    }

    private boolean isOther() {
        return !mFrames.isEmpty() || mCrop != null || mPrivate != null;
    }

    /** Notes on surprising properties of the copy; complete after write(). */
    public List<String> notes() {
        return mNotes;
    }

    /** Writes the copy to a folder that must not exist. */
    public void write(Path folder) throws MistakeException, IOException {
        int frames = mRun.frames().size();
        int inputs = mRun.inputs().size();
        for (int frame : mFrames) {
            if (frame < 0 || frame >= frames) {
                throw new IllegalArgumentException(
                        "--frames: expected frames from 0 to " + (frames - 1) + ", found " + frame);
            }
        }
        if (!mFrames.isEmpty() && inputs % frames != 0) {
            throw new IllegalArgumentException("--frames: expected the same number of inputs for each frame, "
                    + "found " + inputs + " inputs for " + frames + " frames");
        }
        if (Files.exists(folder)) {
            throw new IllegalArgumentException("--out: the folder already exists: " + folder);
        }
        planCrop();
        mFolder = folder;
        Files.createDirectories(folder);
        writeJson(RunFolder.REQUEST, request(Math.max(1, inputs / Math.max(1, frames))));
        if (!isOther()) {
            copyOutcome();
        }
        if (mPrivate != null) {
            mPrivate.lines().forEach(line -> mNotes.add("left out, " + line));
            mNotes.add("removed: the results and events");
            if (mKeepsPixels) {
                mNotes.add("the pixels are kept and may identify a person; --no-pixels removes them");
            }
        }
    }

    private void writeJson(String name, Map<String, Object> json) throws IOException {
        Files.writeString(mFolder.resolve(name), JsonWriter.pretty(json));
    }

    private Map<String, Object> request(int inputsPerFrame) throws MistakeException, IOException {
        Map<String, Object> request = mPrivate == null ? wholeRequest() : mPrivate.request(mRun.root());
        List<?> all = (List<?>) request.get("frames");
        List<Object> trimmed = new ArrayList<>((List<?>) request.remove("trimmed"));
        if (isOther()) {
            trimmed.add(trimmed());
        }
        if (!trimmed.isEmpty()) {
            request.put("trimmed", trimmed);
        }
        List<Object> frames = new ArrayList<>();
        for (int i = 0; i < mRun.frames().size(); ++i) {
            if (isKept(i)) {
                frames.add(all.get(i));
            }
        }
        request.put("frames", frames);
        request.put("inputs", inputs(inputsPerFrame));
        request.put("outputs", outputs());
        return request;
    }

    private Map<String, Object> wholeRequest() throws MistakeException {
        Map<String, Object> request = new LinkedHashMap<>(mRun.root().members());
        Map<String, Object> header = new LinkedHashMap<>(mRun.header().members());
        header.remove("eventsFrom");
        request.put("recording", header);
        request.put("frames", mRun.frames());
        request.put("trimmed", mRun.root().at("trimmed").elements());
        return request;
    }

    private boolean isKept(int frame) {
        return mFrames.isEmpty() || mFrames.contains(frame);
    }

    private Map<String, Object> trimmed() {
        Map<String, Object> trimmed = new LinkedHashMap<>();
        if (!mFrames.isEmpty()) {
            trimmed.put("frames", mFrames);
        }
        if (mCrop != null) {
            trimmed.put("crop", mCrop.toString());
        }
        if (mPrivate != null) {
            trimmed.put("private", true);
        }
        return trimmed;
    }

    private List<Object> inputs(int perFrame) throws MistakeException, IOException {
        List<Object> images = new ArrayList<>();
        for (int i = 0; i < mRun.inputs().size(); ++i) {
            ImageLayout image = mRun.inputs().get(i);
            if (isKept(i / perFrame)) {
                Map<String, Object> copy =
                        copied(image, mInputCrops.get(i), "input" + images.size() + ".bin").json();
                if (!mFrames.isEmpty()) {
                    copy.put("frame", images.size() / perFrame);
                }
                images.add(copy);
            }
        }
        return images;
    }

    private List<Object> outputs() throws MistakeException, IOException {
        List<Object> images = new ArrayList<>();
        for (ImageLayout image : mRun.outputs()) {
            ImageCrop crop = mOutputCrops.get(images.size());
            Map<String, Object> copy = copied(image, crop, "before" + images.size() + ".bin").json();
            if (crop == null && mCrop != null && hasSizeOfInputs(image)) {
                copy.put("width", mCrop.width());
                copy.put("height", mCrop.height());
            }
            images.add(copy);
        }
        return images;
    }

    // Writes a copy of an image to the file `name` if pixels are kept. Returns the copy's description.
    private ImageLayout copied(ImageLayout image, ImageCrop crop, String name)
            throws MistakeException, IOException {
        ImageLayout described = crop == null ? image : crop.image();
        if (image.file() == null && (mPrivate == null || image.kept().isEmpty())) {
            return described;
        }
        if (image.file() == null || !mKeepsPixels) {
            return described.withFile(null, TRIMMED);
        }
        byte[] bytes = crop == null ? image.bytes() : crop.bytes(image.bytes());
        if (mPrivate != null) {
            bytes = mPrivate.withoutFacts(image, bytes, name);
        }
        return described.withFile(RecordedFile.write(mFolder.resolve(name), bytes), "");
    }

    private void copyOutcome() throws MistakeException, IOException {
        Path events = mRun.folder().resolve(RunFolder.EVENTS);
        if (RecordedFile.isRegular(events)) {
            Files.copy(events, mFolder.resolve(RunFolder.EVENTS));
        }
        Map<String, Object> outcome = new LinkedHashMap<>(mRun.outcome().members());
        if (outcome.isEmpty()) {
            return;
        }
        List<Object> images = new ArrayList<>();
        for (ImageLayout image : mRun.results()) {
            images.add(copied(image, null, "output" + images.size() + ".bin").json());
        }
        if (outcome.containsKey("outputs")) {
            outcome.put("outputs", images);
        }
        writeJson(RunFolder.OUTCOME, outcome);
        if (mKeepsPixels) {
            copyHanded();
        }
    }

    // Copies the probe's files of the images that the algorithm library received and returned. Skips missing
    // files.
    private void copyHanded() throws MistakeException, IOException {
        for (Event event : mRun.events().events("pixels")) {
            Json name = event.fields().get("file");
            if (name != null) {
                RecordedFile file = RecordedFile.named(mRun.folder(), name,
                        event.fields().require("size").integer(0, RecordedFile.MOST_BYTES), event
                        .text("crc"));
                if (RecordedFile.isRegular(file.path())) {
                    Files.write(mFolder.resolve(name.string()), file.bytes());
                }
            }
        }
    }

    // Plans the crop of every image, and so finds mistakes before anything is written.
    private void planCrop() throws MistakeException {
        for (ImageLayout image : mRun.inputs()) {
            String name = "input " + mInputCrops.size();
            ImageCrop crop = mCrop == null ? null : ImageCrop.of(image, mCrop, name);
            mInputCrops.add(crop);
            if (mCrop != null && crop == null) {
                mNotes.add(name + " is " + image.format() + ": unchanged");
            }
        }
        for (ImageLayout image : mRun.outputs()) {
            String name = "output " + mOutputCrops.size();
            boolean isCropped = mCrop != null && hasSizeOfInputs(image);
            mOutputCrops.add(isCropped ? ImageCrop.of(image, mCrop, name) : null);
            if (mCrop != null && !isCropped) {
                mNotes.add(name + " does not have the size of the first input: unchanged");
            }
        }
        Set<String> tags = mCrop == null ? Set.of() : sizeTags();
        if (!tags.isEmpty()) {
            mNotes.add("unchanged tags with sizes or positions: " + String.join(", ", tags));
        }
    }

    private Set<String> sizeTags() throws MistakeException {
        Set<String> names = new TreeSet<>();
        for (int i = 0; i < mRun.frames().size(); ++i) {
            for (String source : isKept(i) ? List.of("captureResult", "composition") : List.<String>of()) {
                mRun.frames().get(i).get(source).members().forEach((name, value) -> {
                    if (SIZE_TAGS.matcher(name).find() || SIZE_TYPES.stream().anyMatch(value::has)) {
                        names.add(name);
                    }
                });
            }
        }
        return names;
    }

    private boolean hasSizeOfInputs(ImageLayout image) {
        return !mRun.inputs().isEmpty() && mRun.inputs().get(0).width() == image.width()
                && mRun.inputs().get(0).height() == image.height();
    }
}
