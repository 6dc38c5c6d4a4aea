package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.tool.request.Limits;

import java.util.ArrayList;
import java.util.List;

/** Finds the capture results among the metadata buffers of a dump. */
final class DumpReader {
    private static final String TIMESTAMP = "android.sensor.timestamp";
    /** Tags of a camera's description (its characteristics) that capture results don't have. */
    private static final List<String> OF_DESCRIPTIONS =
            List.of("android.info.supportedHardwareLevel", "android.request.availableCapabilities");

    private final Notes mNotes;

    DumpReader(Notes notes) {
        mNotes = notes;
    }

    /**
     * Returns one frame per capture result, at most Limits.FRAMES. Missing tags are added from the camera's
     * description. A dump with only a description gives one frame, a dump without tags none.
     */
    List<ImportedFrame> frames(List<String> lines) {
        List<List<DumpEntry>> buffers = new ArrayList<>(new DumpParser(mNotes).parse(lines));
        buffers.removeIf(List::isEmpty);
        boolean hasResults = buffers.stream().anyMatch(buffer -> has(buffer, TIMESTAMP));
        List<ImportedFrame> frames = new ArrayList<>();
        ImportedFrame description = new ImportedFrame();
        boolean hasDescription = false;
        int dropped = 0;
        for (List<DumpEntry> buffer : buffers) {
            if (OF_DESCRIPTIONS.stream().anyMatch(tag -> has(buffer, tag))) {
                mNotes.add(buffer.get(0).place(), "the buffer describes a camera; its tags are added to "
                        + "results that lack them");
                description.fillFrom(DumpTags.of(buffer, mNotes));
                hasDescription = true;
            } else if (hasResults && !has(buffer, TIMESTAMP)) {
                mNotes.add(buffer.get(0).place(), "buffer dropped; missing " + TIMESTAMP);
            } else if (frames.size() == Limits.FRAMES) {
                ++dropped;
            } else {
                frames.add(DumpTags.of(buffer, mNotes));
            }
        }
        if (dropped > 0) {
            mNotes.add("", dropped + " results dropped; a request has at most " + Limits.FRAMES + " frames");
        }
        if (frames.isEmpty() && hasDescription) {
            frames.add(description);
        }
        frames.forEach(frame -> frame.fillFrom(description));
        return frames;
    }

    private static boolean has(List<DumpEntry> buffer, String tag) {
        return buffer.stream().anyMatch(entry -> entry.tag().equals(tag));
    }
}
