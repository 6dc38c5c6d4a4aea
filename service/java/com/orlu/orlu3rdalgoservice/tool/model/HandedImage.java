package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.nio.file.Files;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/**
 * One image as the algorithm library saw it: an input when it got it, or an output when it called back.
 *
 * @param call  "process" or "callback"
 * @param kind  "input" or "output"
 * @param index from 0
 * @param text  whether its bytes are those that Java had: the input's before the request, the output's
 *              after it
 * @param match the same in one word
 */
public record HandedImage(String call, String kind, int index, String text, Match match) {
    public enum Match { SAME, DIFFERENT, UNKNOWN }

    private static final String AS_IN_JAVA = "as Java has it";

    /** All that the probe kept of a recording; none without its pixels. */
    static List<HandedImage> of(RecordedRequest recorded) throws MistakeException {
        List<HandedImage> images = new ArrayList<>();
        if (recorded.part("request") == null) {
            return images;
        }
        long id = recorded.part("request").get("id").getAsLong();
        for (Event event : recorded.events().events("pixels")) {
            if (event.number("reqId") == id) {
                images.add(of(recorded, event));
            }
        }
        return images;
    }

    private static HandedImage of(RecordedRequest recorded, Event event) {
        String kind = event.text("image");
        boolean isInput = kind.equals("input");
        int index = (int) event.number("index");
        List<RecordedImage> inJava = recorded.images(isInput ? "input" : "result");
        RecordedImage counterpart = index < inJava.size() ? inJava.get(index) : null;
        String text = unknown(recorded, event, counterpart);
        Match match = Match.UNKNOWN;
        if (text.isEmpty()) {
            try {
                int at = mismatch(recorded, event, counterpart);
                match = at < 0 ? Match.SAME : Match.DIFFERENT;
                text = at < 0 ? AS_IN_JAVA
                        : "not " + AS_IN_JAVA + " from byte " + at + " on"
                                + (isInput ? "" : ": written after the callback");
            } catch (MistakeException e) {
                text = e.getMessage();
            }
        }
        String size = event.has("size") ? event.number("size") + " bytes, " : "";
        return new HandedImage(event.text("at"), kind, index, size + text, match);
    }

    private static boolean isOfSameCheck(Event event, RecordedImage inJava) {
        return inJava.part().get("crc").getAsString().equals(event.text("crc"))
                && inJava.number("size") == event.number("size");
    }

    // Why nothing can be said, "" when something can.
    private static String unknown(RecordedRequest recorded, Event event, RecordedImage inJava) {
        if (event.has("kept")) {
            return "kept: " + event.text("kept");
        }
        if (inJava == null || !inJava.hasBytes()) {
            return "Java's is not recorded";
        }
        boolean isThere = isOfSameCheck(event, inJava)
                || Files.exists(recorded.folder().resolve(event.text("file")));
        return isThere ? "" : "not kept";
    }

    // The first byte that differs from Java's, -1 for none. A file whose bytes the recorder has is left out.
    private static int mismatch(RecordedRequest recorded, Event event, RecordedImage inJava)
            throws MistakeException {
        if (isOfSameCheck(event, inJava)) {
            return -1;
        }
        byte[] bytes = recorded.checkedBytes(event.text("file"), event.text("crc"));
        byte[] counterpart = inJava.bytes();
        // The library may get less of the memory than Java has.
        int common = Math.min(bytes.length, counterpart.length);
        return Arrays.mismatch(bytes, 0, common, counterpart, 0, common);
    }

    /** "process input 0". */
    public String name() {
        return call + " " + kind + " " + index;
    }
}
