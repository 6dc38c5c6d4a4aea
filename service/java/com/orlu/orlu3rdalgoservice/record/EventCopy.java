package com.orlu.orlu3rdalgoservice.record;

import java.io.File;
import java.io.IOException;
import java.io.RandomAccessFile;
import java.nio.ByteBuffer;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * Copies the events that the probe writes during a request into the recording of that request. If the
 * recording stores the probe's pixels, moves the request's pixel files from the probe's folder there. Deletes
 * a pixel file instead if it equals the recorded pixels of one of Java's images or would exceed the
 * recording's size limit.
 */
final class EventCopy {
    /** The environment variables that name the probe's events file and its pixels folder. */
    private static final String EVENTS_VARIABLE = "ORLU_EVENTS";
    private static final String PIXELS_VARIABLE = "ORLU_PIXELS";

    private final File mEvents;
    private final long mStart;

    private EventCopy(File events) {
        mEvents = events;
        mStart = events.length();
    }

    /** Starts after the events that the probe has written so far. Returns null without a probe. */
    static EventCopy begin() {
        String path = Setting.ofProbe(EVENTS_VARIABLE);
        return path.isEmpty() ? null : new EventCopy(new File(path));
    }

    /** Offset of this request's events in the probe's file, in bytes; needed to copy them after a crash. */
    long start() {
        return mStart;
    }

    /**
     * Copies the events from offset start() on into the recording and moves this request's pixel files
     * there. Adds the events file and a list of the omitted pixel files to `outcome`.
     */
    void end(RecordFolder to, String requestId, Map<String, Object> outcome) throws IOException {
        if (!mEvents.isFile()) {
            return;
        }
        byte[] bytes;
        try (RandomAccessFile from = new RandomAccessFile(mEvents, "r")) {
            bytes = new byte[Math.toIntExact(Math.max(0, from.length() - mStart))];
            from.seek(mStart);
            from.readFully(bytes);
        }
        Map<String, Object> events = JsonWriter.object("size", bytes.length);
        outcome.put("events", events);
        to.writeBytes(RecordFolder.EVENTS, ByteBuffer.wrap(bytes), events);
        String folder = Setting.ofProbe(PIXELS_VARIABLE);
        if (!folder.isEmpty() && to.keepsProbePixels()) {
            String text = new String(bytes, StandardCharsets.ISO_8859_1);
            outcome.put("leftOut", movePixels(new File(folder), text, requestId, to));
        }
    }

    // Finds the pixel files by their names in the events: on some file systems, a 32-bit process can't list
    // the folder. Concurrent requests share the events file, so only events with this request's id count.
    // Returns the files that the size limit excludes.
    private static List<Object> movePixels(File folder, String events, String requestId, RecordFolder to)
            throws IOException {
        List<Object> leftOut = new ArrayList<>();
        Pattern line = Pattern.compile("\"event\":\"pixels\"[^\n]*\"reqId\":" + Pattern.quote(requestId)
                + ",[^\n]*\"file\":\"([^\"/\\\\]+)\",\"crc\":\"([0-9a-f]+)\"");
        Matcher found = line.matcher(events);
        while (found.find()) {
            File file = new File(folder, found.group(1));
            if (file.isFile() && !to.takeFile(file, found.group(2))) {
                leftOut.add(JsonWriter.object("file", file.getName(), "kept", RecordFolder.TOO_LARGE));
            }
        }
        return leftOut;
    }
}
