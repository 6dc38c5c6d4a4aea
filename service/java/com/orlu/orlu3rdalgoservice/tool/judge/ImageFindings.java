package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.image.PictureFacts;
import com.orlu.orlu3rdalgoservice.tool.image.PlaneUse;
import com.orlu.orlu3rdalgoservice.tool.judge.Finding.Tab;

import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Map;

/** Finds problems in a request's images. Compares each output with the base input. */
public final class ImageFindings {
    // Levels from 0 to 255.
    private static final double BLACK_MEAN = 3;
    private static final int BLACK_LEVEL = 12;
    private static final double DARK_INPUT_MEAN = 8;
    private static final double LEAST_COLOUR_DISTANCE = 6;
    // Fractions of all pixels or rows.
    private static final double NEARLY_ALL = 0.99;
    private static final double MUCH_CLIPPED = 0.25;
    private static final double LITTLE_CLIPPED = 0.05;
    private static final double LEAST_TAIL = 0.01;
    // Fraction of all rows, and of a colour distance.
    private static final double HALF = 0.5;
    // Fraction of the base input's mean brightness.
    private static final double DARKER = 0.3;

    private final Exhibits mExhibits;
    private final boolean mHasPass;
    private final List<Finding> mFindings = new ArrayList<>();

    /** Without an algorithm pass, nothing writes the outputs, so their content is not checked. */
    public ImageFindings(Exhibits exhibits, boolean hasPass) {
        mExhibits = exhibits;
        mHasPass = hasPass;
    }

    public List<Finding> all() {
        for (ImageExhibit output : mExhibits.outputs()) {
            checkMemory(output);
            if (mHasPass) {
                checkOutput(output);
            }
        }
        checkInputs();
        return mFindings;
    }

    private void wrong(String kind, Tab tab, String what, String why) {
        mFindings.add(Finding.wrong(kind, tab, what, why));
    }

    private void look(String kind, Tab tab, String what, String why) {
        mFindings.add(Finding.look(kind, tab, what, why));
    }

    private void checkMemory(ImageExhibit image) {
        if (image.memory().missing() > 0) {
            wrong("past-end", Tab.MEMORY, "The planes of %s exceed its memory by %d bytes."
                            .formatted(image.name(), image.memory().missing()),
                    "Its description (size, strides, plane sizes) does not fit the buffer. Reading "
                            + "the image accesses foreign memory or fails.");
        }
        if (image.memory().usedBehind() > 0 && !image.problem().isEmpty()) {
            look("written-behind", Tab.MEMORY, "%d bytes were written after the planes of %s."
                            .formatted(image.memory().usedBehind(), image.name()),
                    "The data is there, but the description does not cover it.");
        }
    }

    private void checkOutput(ImageExhibit output) {
        if (output.facts() == null) {
            checkNoPicture(output);
            return;
        }
        if (isBlack(output.facts())) {
            checkBlack(output);
            return;
        }
        if (output.facts().shear() != 0) {
            addSlanted(output);
        } else {
            checkPlanes(output);
        }
        ImageExhibit base = mExhibits.base();
        if (base != null && base.facts() != null) {
            checkBrightness(output, base);
            checkColours(output, base);
        }
    }

    private void checkNoPicture(ImageExhibit output) {
        boolean isUntouched = output.problem().startsWith("untouched");
        String written = String.join(", ", writtenInputs());
        if (isUntouched && !written.isEmpty()) {
            wrong("wrong-buffer", Tab.MEMORY, "Nothing was written into %s, but the bytes of %s have changed."
                            .formatted(output.name(), written),
                    "The algorithm library wrote into the wrong buffer: it mixed up inputs and outputs, "
                            + "or mapped the wrong descriptor.");
        } else if (isUntouched) {
            wrong("untouched", Tab.MEMORY, "Nothing was written into %s: all its bytes are still 0."
                            .formatted(output.name()),
                    "A viewer shows it black or green. The Timeline tab "
                            + "shows whether the library ran and called back; the Memory tab shows which "
                            + "buffer it received.");
        } else {
            wrong("unreadable", Tab.MEMORY,
                    "%s can't be shown: it is %s.".formatted(output.name(), output.problem()),
                    "The bytes are damaged, or the returned description does not fit them.");
        }
    }

    private List<String> writtenInputs() {
        return mExhibits.inputs().stream().filter(ImageExhibit::isWritten).map(ImageExhibit::name).toList();
    }

    private static boolean isBlack(PictureFacts facts) {
        return facts.meanLuma() < BLACK_MEAN && facts.lumaAt(NEARLY_ALL) < BLACK_LEVEL;
    }

    private void checkBlack(ImageExhibit output) {
        ImageExhibit base = mExhibits.base();
        PictureFacts input = base == null ? null : base.facts();
        String why = input != null && input.meanLuma() < DARK_INPUT_MEAN
                ? "The input is dark, too (%.1f): check the frames first.".formatted(input.meanLuma())
                : (input == null ? "" : "The input is not black. ") + "The algorithm library wrote black "
                        + "pixels: check the exposure and gain parameters, then the algorithms that ran.";
        wrong("black", Tab.PICTURES, "%s is black: its mean brightness is %.1f of 255.".formatted(
                output.name(), output.facts().meanLuma()), why);
    }

    // Rows that are still zero were not written: outputs start as zeros, except in a replay.
    private void checkPlanes(ImageExhibit output) {
        for (PlaneUse plane : output.memory().planes()) {
            if (plane.rows() < 2) {
                continue;
            }
            if (plane.usedRows() == 0) {
                wrong("plane-untouched", Tab.MEMORY, "Nothing was written into the plane %s of %s."
                                .formatted(plane.name(), output.name()),
                        "Chroma of 0 appears green. The plane's address or size was wrong, or the plane "
                                + "was not processed.");
            } else if (plane.emptyTail() > Math.max(1, LEAST_TAIL * plane.rows())) {
                look("rows-missing", Tab.MEMORY, "The last %d of %d rows of the plane %s of %s are still 0."
                                .formatted(plane.emptyTail(), plane.rows(), plane.name(), output.name()),
                        "Too few rows were written, or rows were written with a smaller stride.");
            }
        }
    }

    private void addSlanted(ImageExhibit output) {
        int shear = output.facts().shear();
        wrong("stride", Tab.MEMORY, "%s is slanted, by %d pixels from row to row: ".formatted(
                        output.name(), Math.abs(shear)) + "it was written or read with a wrong stride.",
                cause(output, Math.abs(shear)));
    }

    private String cause(ImageExhibit output, int shear) {
        if (mExhibits.inputs().stream().anyMatch(ImageFindings::isSlanted)) {
            return "The input is slanted, too: the request states a wrong stride for its own file.";
        }
        PlaneUse written = output.memory().planes().get(0);
        if (written.usedPadding() > HALF * written.rows()) {
            return "No input is slanted. The output's padding contains pixels in %d of %d rows: %s"
                    .formatted(written.usedPadding(), written.rows(), mistaken(written));
        }
        ImageExhibit base = mExhibits.base() == null ? output : mExhibits.base();
        PlaneUse read = base.memory().planes().get(0);
        // The shear counts pixels, which may have several bytes.
        int padding = read.stride() - read.rowBytes();
        boolean isIt = padding > 0 && padding % shear == 0;
        return "No input is slanted. " + (isIt
                ? "The rows of %s have %d bytes of padding: %s".formatted(
                        base.name(), padding, mistaken(read))
                : "The algorithm library used a wrong stride: compare the strides in the Memory tab.");
    }

    private static String mistaken(PlaneUse plane) {
        return "the algorithm library used a stride of %d instead of %d bytes.".formatted(
                plane.rowBytes(), plane.stride());
    }

    private static boolean isSlanted(ImageExhibit image) {
        return image.facts() != null && image.facts().shear() != 0;
    }

    private void checkBrightness(ImageExhibit output, ImageExhibit base) {
        double mean = output.facts().meanLuma();
        if (output.facts().clipped() > MUCH_CLIPPED && base.facts().clipped() < LITTLE_CLIPPED) {
            look("clipped", Tab.PICTURES, "%.0f %% of %s is white, but only %.0f %% of %s.".formatted(
                            100 * output.facts().clipped(), output.name(), 100 * base.facts().clipped(),
                            base.name()),
                    "Bright parts are lost: check the exposure and gain parameters, and the histogram.");
        }
        if (mean < DARKER * base.facts().meanLuma()) {
            look("dark", Tab.PICTURES, "%s is much darker than %s: %.0f instead of %.0f of 255 on average."
                            .formatted(output.name(), base.name(), mean, base.facts().meanLuma()),
                    "Check the exposure and gain parameters, and the histogram.");
        }
    }

    private void checkColours(ImageExhibit output, ImageExhibit base) {
        double straight = base.facts().colourDistance(output.facts());
        double exchanged = base.facts().exchangedDistance(output.facts());
        if (straight > LEAST_COLOUR_DISTANCE && exchanged < HALF * straight) {
            wrong("colours-exchanged", Tab.PICTURES,
                    "Red and blue are exchanged in %s.".formatted(output.name()),
                    "In YUV, the planes U and V were exchanged, as if NV12 were written for NV21: compare "
                            + "the output's format in the Memory tab with the format that is written.");
        }
    }

    private void checkInputs() {
        List<String> written = writtenInputs();
        if (!written.isEmpty() && mFindings.stream().noneMatch(each -> each.kind().equals("wrong-buffer"))) {
            wrong("input-written", Tab.MEMORY,
                    "The bytes of %s have changed.".formatted(String.join(", ", written)),
                    "The algorithm library wrote into memory that it may only read.");
        }
        boolean hasOther = mExhibits.inputs().stream().anyMatch(input -> !isDark(input));
        Map<Long, ImageExhibit> seen = new HashMap<>();
        for (ImageExhibit input : mExhibits.inputs()) {
            ImageExhibit same = seen.putIfAbsent(input.checksum(), input);
            if (hasOther && isDark(input)) {
                wrong("frame-missing", Tab.PICTURES,
                        "%s (frame %d) has no picture, but other inputs have one.".formatted(
                                input.name(), input.frame()),
                        "The burst lacks the picture of this frame, which spoils the merged image.");
            } else if (same != null && input.isOfFile() && !mExhibits.isLost()
                    && same.frame() != input.frame()) {
                look("frame-twice", Tab.PICTURES, "%s (frame %d) contains the same bytes as %s (frame %d)."
                                .formatted(input.name(), input.frame(), same.name(), same.frame()),
                        "A frame was passed twice, perhaps instead of another.");
            }
        }
    }

    private static boolean isDark(ImageExhibit input) {
        return input.facts() == null || isBlack(input.facts());
    }
}
