package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;
import com.orlu.orlu3rdalgoservice.tool.request.Limits;
import com.orlu.orlu3rdalgoservice.tool.request.RecordedFile;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Predicate;

/**
 * Collects frames and pictures from files. A file with a picture's extension is a picture. A text that starts
 * with a brace is the JSON of a camera image test; any other text is a dump. All other files are pixels
 * without a header.
 */
public final class Importer {
    private static final int MOST_DUMP_BYTES = 8 << 20;
    private static final int MOST_OUTPUTS = Limits.FRAMES * Limits.IMAGES;
    private static final int PROBE_BYTES = 4096;

    private final Notes mNotes;
    private final List<ImportedFrame> mFrames = new ArrayList<>();
    private final List<ImportedFrame> mExifFrames = new ArrayList<>();
    private final List<ImportedPicture> mPictures = new ArrayList<>();
    private final List<Expected> mExpected = new ArrayList<>();

    /** A picture that a JSON file lists and that is not found yet. */
    private record Expected(SuiteOutput output, Path json) {
    }

    public Importer(Notes notes) {
        mNotes = notes;
    }

    /**
     * Reads the files. Files of pixels are read last, because JSON files describe them. Throws if a file has
     * an unknown form.
     */
    public void read(List<Path> files) throws MistakeException, IOException {
        List<Path> pixels = new ArrayList<>();
        for (Path file : files) {
            mNotes.begin(file);
            ImageFileKind kind = ImageFileKind.of(file);
            if (kind != ImageFileKind.BYTES) {
                readPicture(file, kind);
            } else if (!isText(file)) {
                pixels.add(file);
            } else if (firstCharacter(file) == '{') {
                readSuite(file);
            } else {
                readDump(file);
            }
        }
        for (ImportedPicture picture : mPictures) {
            takeExpected(expected -> expected.output().kind() == ImageFileKind.of(picture.file()));
        }
        pixels.forEach(this::readPixels);
        List.copyOf(mExpected).forEach(this::find);
        limit("frame", mFrames, Limits.FRAMES);
        limit("frame", mExifFrames, Limits.FRAMES);
        limit("picture", mPictures, MOST_OUTPUTS);
    }

    private void limit(String what, List<?> all, int most) {
        if (all.size() > most) {
            mNotes.add("", "only the first " + most + " " + what + "s are used; found " + all.size());
            all.subList(most, all.size()).clear();
        }
    }

    /**
     * Returns the frames of dumps and JSON files. If there are none, returns a frame for each picture passed
     * to read(), with the values of the picture's EXIF block, if any.
     */
    public List<ImportedFrame> frames() {
        return mFrames.isEmpty() ? mExifFrames : mFrames;
    }

    public List<ImportedPicture> pictures() {
        return mPictures;
    }

    private static byte[] beginning(Path file) throws IOException {
        try (var stream = Files.newInputStream(file)) {
            return stream.readNBytes(PROBE_BYTES);
        }
    }

    // Returns false for pixels: for a file with a typical extension, or with a zero byte near its start.
    private static boolean isText(Path file) throws IOException {
        String name = file.getFileName().toString();
        return !name.matches(".*\\.(raw\\d*|yuv|nv\\d\\d|bin)")
                && new String(beginning(file), StandardCharsets.ISO_8859_1).indexOf('\0') < 0;
    }

    private static char firstCharacter(Path file) throws IOException {
        String text = new String(beginning(file), StandardCharsets.UTF_8).strip();
        return text.isEmpty() ? ' ' : text.charAt(0);
    }

    private void readSuite(Path file) throws MistakeException {
        SuiteReader suite = new SuiteReader(mNotes);
        suite.read(file);
        mFrames.addAll(suite.frames());
        suite.outputs().forEach(output -> mExpected.add(new Expected(output, file)));
        limit("output", mExpected, MOST_OUTPUTS);
    }

    private void readDump(Path file) throws MistakeException, IOException {
        if (Files.size(file) > MOST_DUMP_BYTES) {
            throw new MistakeException(file.toString(), "", "expected at most " + MOST_DUMP_BYTES
                    + " bytes for a dump, found " + Files.size(file));
        }
        // Invalid bytes are replaced, and notes show the replacement.
        List<String> lines = new String(Files.readAllBytes(file), StandardCharsets.UTF_8).lines().toList();
        List<ImportedFrame> frames = new DumpReader(mNotes).frames(lines);
        if (frames.isEmpty()) {
            throw new MistakeException(file.toString(), "",
                    "unknown form; expected a dump with metadata entries, JSON or a picture");
        }
        mFrames.addAll(frames);
    }

    private void readPicture(Path file, ImageFileKind kind) throws MistakeException {
        mExifFrames.add(kind == ImageFileKind.PNG ? new ImportedFrame()
                : ExifReader.read(file, kind, mNotes));
        addPicture(file, kind);
    }

    private void addPicture(Path file, ImageFileKind kind) {
        try {
            mPictures.add(ImportedPicture.of(file, kind));
        } catch (IOException e) {
            mNotes.add("", "pixels not used as an input: " + Printable.message(e));
        }
    }

    private void readPixels(Path file) {
        mNotes.begin(file);
        long size = file.toFile().length();
        String name = file.getFileName().toString();
        // Outputs of different formats can have the same size, so the file's extension is compared first.
        Expected expected = takeExpected(
                other -> other.output().isOfSize(size) && name.endsWith("." + other.output().name()));
        if (expected == null) {
            expected = takeExpected(other -> other.output().isOfSize(size));
        }
        if (expected != null) {
            mPictures.add(new ImportedPicture(file, expected.output().format(), expected.output()));
        } else {
            mNotes.add("", "dropped; no JSON file describes an output of " + size + " bytes");
        }
    }

    private Expected takeExpected(Predicate<Expected> which) {
        Expected first = mExpected.stream().filter(which).findFirst().orElse(null);
        mExpected.remove(first);
        return first;
    }

    // Looks for a picture beside the JSON file, with the JSON file's name and the format's extension.
    private void find(Expected expected) {
        SuiteOutput output = expected.output();
        mNotes.begin(expected.json());
        String stem = expected.json().getFileName().toString().replaceFirst("\\.[^.]*$", "");
        Path file = expected.json().resolveSibling(stem + "." + output.name());
        if (!RecordedFile.isRegular(file)) {
            mNotes.add("outputs", "no picture given for " + output.name() + " " + output.width() + "x"
                    + output.height() + ", and there is no " + file.getFileName());
        } else if (output.kind() == ImageFileKind.BYTES) {
            readPixels(file);
        } else {
            addPicture(file, output.kind());
        }
    }
}
