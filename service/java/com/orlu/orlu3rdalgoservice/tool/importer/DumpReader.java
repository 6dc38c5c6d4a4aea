package com.orlu.orlu3rdalgoservice.tool.importer;

import java.util.ArrayList;
import java.util.List;

/** Finds the capture results among the metadata buffers of a dump, which holds more than those. */
final class DumpReader {
    private static final String TIMESTAMP = "android.sensor.timestamp";
    /** What a camera's description has, and neither a result nor a request. */
    private static final List<String> OF_DESCRIPTIONS =
            List.of("android.info.supportedHardwareLevel", "android.request.availableCapabilities");

    private final Notes mNotes;

    DumpReader(Notes notes) {
        mNotes = notes;
    }

    /** The frames of a dump, none when there is no buffer in the text. */
    List<ImportedFrame> frames(List<String> lines) {
        List<List<DumpEntry>> buffers = new ArrayList<>(new DumpParser(mNotes).parse(lines));
        buffers.removeIf(List::isEmpty);
        boolean hasResults = buffers.stream().anyMatch(buffer -> has(buffer, TIMESTAMP));
        List<ImportedFrame> frames = new ArrayList<>();
        List<ImportedFrame> descriptions = new ArrayList<>();
        for (List<DumpEntry> buffer : buffers) {
            if (OF_DESCRIPTIONS.stream().anyMatch(tag -> has(buffer, tag))) {
                mNotes.add(buffer.get(0).place(), "the buffer describes a camera: its tags are taken where "
                        + "a result has none");
                descriptions.add(DumpTags.of(buffer, mNotes));
            } else if (hasResults && !has(buffer, TIMESTAMP)) {
                mNotes.add(buffer.get(0).place(), "the buffer is no result, having no " + TIMESTAMP
                        + ": dropped");
            } else {
                frames.add(DumpTags.of(buffer, mNotes));
            }
        }
        if (frames.isEmpty()) {
            frames.addAll(descriptions);
        }
        frames.forEach(frame -> descriptions.forEach(frame::fillFrom));
        return frames;
    }

    private static boolean has(List<DumpEntry> buffer, String tag) {
        return buffer.stream().anyMatch(entry -> entry.tag().equals(tag));
    }
}
