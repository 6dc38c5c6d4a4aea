package com.orlu.orlu3rdalgoservice.tool.check;

import com.orlu.orlu3rdalgoservice.tool.image.FilePixels;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSize;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSynthesis;
import com.orlu.orlu3rdalgoservice.tool.image.Photos;
import com.orlu.orlu3rdalgoservice.tool.image.Picture;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;
import com.orlu.orlu3rdalgoservice.tool.request.RequestTags;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.PrintStream;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Supplier;
import java.util.stream.Collectors;

/** Reads request files and the files they name, and finds their mistakes before the first request runs. */
public final class RequestChecker {
    private final Path mOtherPhoto;
    private final List<String> mTags;
    private final Photos mPhotos;
    private final List<RequestFile> mRequests = new ArrayList<>();
    private final List<Supplier<String>> mUnderstood = new ArrayList<>();
    private final List<Mistakes> mMistakes = new ArrayList<>();

    /** `otherPhoto`, unless null, replaces the files' photos; `tags` (NAME=VALUE) are set in all frames. */
    public RequestChecker(Path otherPhoto, List<String> tags, Photos photos) {
        mOtherPhoto = otherPhoto;
        mTags = tags;
        mPhotos = photos;
    }

    /** Checks one file. Throws IllegalArgumentException if a photo or tag of the command line is invalid. */
    public void check(Path file) {
        Mistakes mistakes = new Mistakes(file.toString());
        mMistakes.add(mistakes);
        RequestFile request = RequestFileReader.read(file, mOtherPhoto, mistakes);
        if (request == null) {
            return;
        }
        RequestTags.set(request, mTags);
        boolean isRecorded = false;
        for (ImagePlan image : request.inputs()) {
            isRecorded |= image.layout() != null;
            if (image.file() != null) {
                mistakes.attempt(() -> new FilePixels(image).check());
            } else if (image.layout() != null && image.layout().file() != null) {
                mistakes.attempt(image.layout().file()::check);
            }
        }
        if (!isRecorded) {
            mistakes.attempt(() -> checkSizes(request, mistakes));
        } else if (mistakes.errors() == 0) {
            // The service itself passed the recorded sizes, so they need no warnings.
            mUnderstood.add(() -> understood(request, request.inputs(), request.outputs()));
        }
        if (mistakes.errors() == 0) {
            mRequests.add(request);
        }
    }

    private void checkSizes(RequestFile request, Mistakes mistakes) throws MistakeException {
        FrameSize size = request.needsPhoto()
                ? new FrameSynthesis(request.frames(), false).size(request.place(), photo(request))
                : FrameSize.of(request, List.of());
        List<ImagePlan> inputs = sized(request.inputs(), size, mistakes);
        List<ImagePlan> outputs = sized(request.outputs(), size, mistakes);
        if (mistakes.errors() == 0) {
            SizeAdvice.give(request, inputs, outputs);
            mUnderstood.add(() -> understood(request, inputs, outputs));
        }
    }

    // Returns the images with their sizes. Reports and omits images whose stride is too small for a row.
    private static List<ImagePlan> sized(List<ImagePlan> images, FrameSize size, Mistakes mistakes) {
        List<ImagePlan> sized = new ArrayList<>();
        for (ImagePlan image : images) {
            mistakes.attempt(() -> sized.add(size.applyTo(image)));
        }
        return sized;
    }

    private Picture photo(RequestFile request) throws MistakeException {
        Picture photo = mPhotos.load(request.photo());
        if (photo != null) {
            return photo;
        }
        String problem = "can't read the photo " + request.photo();
        if (mOtherPhoto != null) {
            throw new IllegalArgumentException("--photo: " + problem);
        }
        throw request.place().error("photo", problem);
    }

    // Returns the line to print if the file has no errors. `inputs` and `outputs` have their final sizes.
    private static String understood(RequestFile request, List<ImagePlan> inputs, List<ImagePlan> outputs) {
        int frames = request.frames().frames().size();
        return request.file() + ": ok: " + counted(frames, "frame")
                + ", in " + images(inputs) + ", out " + images(outputs) + ", " + algorithms(request);
    }

    private static String images(List<ImagePlan> images) {
        Map<String, Integer> counts = new LinkedHashMap<>();
        for (ImagePlan image : images) {
            counts.merge(image.format() + " " + image.width() + "x" + image.height()
                    + (image.file() == null ? "" : " from a file"), 1, Integer::sum);
        }
        return counts.isEmpty() ? "nothing" : counts.entrySet().stream()
                .map(entry -> (entry.getValue() == 1 ? "" : entry.getValue() + " ") + entry.getKey())
                .collect(Collectors.joining(" + "));
    }

    private static String algorithms(RequestFile request) {
        Object asked = request.frames().frames().isEmpty() ? null
                : request.frames().frames().get(0).composition().get("orlu.control.algoType");
        boolean asksFor = asked instanceof String[] names && names.length > 0;
        return asksFor ? String.join(" ", (String[]) asked) : "no algorithms";
    }

    /** Returns the requests from those files that have no errors. */
    public List<RequestFile> requests() {
        return mRequests;
    }

    /** Returns whether there are no errors and, if strict, no warnings. */
    public boolean isRight(boolean isStrict) {
        return errors() == 0 && (!isStrict || warnings() == 0);
    }

    private int errors() {
        return mMistakes.stream().mapToInt(Mistakes::errors).sum();
    }

    /** Returns the errors and warnings of each file, in the order of the files. */
    public List<Mistakes> mistakes() {
        return mMistakes;
    }

    /** Returns the number of warnings about the file with this index. */
    public int warnings(int file) {
        return mMistakes.get(file).warnings();
    }

    private int warnings() {
        return mMistakes.stream().mapToInt(Mistakes::warnings).sum();
    }

    /** Prints one line for each file that has no errors. */
    public void printUnderstood(PrintStream to) {
        mUnderstood.forEach(line -> to.println(Printable.line(line.get())));
    }

    /**
     * Prints the lines of each file's errors and warnings (see Mistakes.lines()), then the total counts.
     * Prints nothing if there are no errors and no warnings.
     */
    public void printMistakes(PrintStream to, boolean isStrict) {
        for (Mistakes mistakes : mMistakes) {
            mistakes.lines().forEach(to::println);
        }
        long named = mMistakes.stream().filter(file -> file.errors() + file.warnings() > 0).count();
        if (named > 0) {
            String over = mMistakes.stream().anyMatch(Mistakes::areMore) ? "over " : "";
            to.println("run: " + over + counted(errors(), "error") + " and "
                    + counted(warnings(), "warning")
                    + " in " + named + " of " + counted(mMistakes.size(), "file")
                    + (isRight(isStrict) ? "" : "; nothing runs"));
        }
    }

    /** Returns text such as "1 file" or "2 files". */
    public static String counted(long count, String what) {
        return count + " " + what + (count == 1 ? "" : "s");
    }
}
