package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.request.RecordedFile;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/**
 * One image as the algorithm library saw it: an input at the call of process, or an output at the callback.
 *
 * @param call  "process" or "callback"
 * @param kind  "input" or "output"
 * @param text  the image's size, and the first difference from Java's image, or why there is no comparison.
 *              An input is compared with Java's input before the request, an output with Java's output after
 *              the request.
 * @param match whether the image equals Java's image
 */
public record HandedImage(String call, String kind, int index, String text, Match match) {
    public enum Match { SAME, DIFFERENT, UNKNOWN }

    private static final String AS_IN_JAVA = "as in Java";
    private static final int NOT_KEPT = -2;

    /** All images that the probe reported in a run; empty if the probe did not record pixels. */
    static List<HandedImage> of(Run run) {
        List<HandedImage> images = new ArrayList<>();
        for (Event event : run.events().events("pixels")) {
            if (event.number("reqId") == run.request().id()) {
                images.add(of(run, event));
            }
        }
        return images;
    }

    private static HandedImage of(Run run, Event event) {
        String kind = event.text("image");
        boolean isInput = kind.equals("input");
        long index = event.number("index");
        List<ImageLayout> inJava = isInput ? run.inputs() : run.results();
        ImageLayout counterpart = index >= 0 && index < inJava.size() ? inJava.get((int) index) : null;
        Match match = Match.UNKNOWN;
        String text;
        if (event.has("kept")) {
            text = "kept: " + event.text("kept");
        } else if (counterpart == null || counterpart.file() == null) {
            text = "Java's image is not recorded";
        } else {
            try {
                int at = mismatch(run, event, counterpart);
                match = at == NOT_KEPT ? Match.UNKNOWN : at < 0 ? Match.SAME : Match.DIFFERENT;
                text = at == NOT_KEPT ? "not kept" : at < 0 ? AS_IN_JAVA
                        : "differs from Java at byte " + at
                                + (isInput ? "" : ": written after the callback");
            } catch (MistakeException e) {
                text = e.getMessage();
            }
        }
        String size = event.has("size") ? event.number("size") + " bytes, " : "";
        return new HandedImage(event.text("at"), kind, (int) index, size + text, match);
    }

    // Returns the offset of the first byte that differs from Java's image; -1 if no byte differs; NOT_KEPT if
    // the library's image was not kept in a file. An image that equals Java's has no file of its own.
    private static int mismatch(Run run, Event event, ImageLayout inJava) throws MistakeException {
        if (inJava.file().crc().equals(event.text("crc")) && inJava.size() == event.number("size")) {
            return -1;
        }
        RecordedFile file = RecordedFile.named(run.folder(), event.fields().require("file"),
                event.fields().require("size").integer(0, RecordedFile.MOST_BYTES), event.text("crc"));
        if (!RecordedFile.isRegular(file.path())) {
            return NOT_KEPT;
        }
        byte[] bytes = file.bytes();
        byte[] counterpart = inJava.bytes();
        // The library may receive less memory than Java's image has.
        int common = Math.min(bytes.length, counterpart.length);
        return Arrays.mismatch(bytes, 0, common, counterpart, 0, common);
    }

    /** Returns, for example, "process input 0". */
    public String name() {
        return call + " " + kind + " " + index;
    }
}
