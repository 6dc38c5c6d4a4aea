package com.orlu.orlu3rdalgoservice.record;

import java.io.File;
import java.io.IOException;
import java.io.RandomAccessFile;
import java.nio.ByteBuffer;
import java.nio.charset.StandardCharsets;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * The probe's events of one request, cut out of the file that they go into, and the pixels that the probe
 * kept of it, which are moved out of the probe's folder where they are not those of Java.
 */
final class EventCopy {
    /** The probe's environment variables: its file of events, and its folder of pixels. */
    private static final String EVENTS_VARIABLE = "ORLU_EVENTS";
    private static final String PIXELS_VARIABLE = "ORLU_PIXELS";

    private final File mEvents;
    private final long mStart;

    private EventCopy(File events) {
        mEvents = events;
        mStart = events.length();
    }

    /** The events from here on; null without a probe. */
    static EventCopy begin() {
        String path = Setting.ofProbe(EVENTS_VARIABLE);
        return path.isEmpty() ? null : new EventCopy(new File(path));
    }

    /** The first byte of the events, for whoever copies them after the process ended. */
    long start() {
        return mStart;
    }

    /**
     * Puts the events until now, and the pixels of the request of this id, into the recording, and adds to
     * the text what it has of them.
     */
    void end(RecordFolder to, String requestId, JsonText text) throws IOException {
        if (!mEvents.isFile()) {
            return;
        }
        byte[] bytes;
        try (RandomAccessFile from = new RandomAccessFile(mEvents, "r")) {
            bytes = new byte[Math.toIntExact(Math.max(0, from.length() - mStart))];
            from.seek(mStart);
            from.readFully(bytes);
        }
        text.object("events").add("size", bytes.length);
        to.writeBytes(RecordFolder.EVENTS, ByteBuffer.wrap(bytes), text);
        text.end();
        String folder = Setting.ofProbe(PIXELS_VARIABLE);
        if (!folder.isEmpty() && to.keepsProbePixels()) {
            text.list("leftOut");
            movePixels(new File(folder), new String(bytes, StandardCharsets.ISO_8859_1), requestId, to, text);
            text.end();
        }
    }

    // Requests that run at the same time write into the same events. The folder itself can't be listed in a
    // 32-bit process on every file system.
    private static void movePixels(File folder, String events, String requestId, RecordFolder to,
            JsonText text) throws IOException {
        Pattern line = Pattern.compile("\"event\":\"pixels\"[^\n]*\"reqId\":" + Pattern.quote(requestId)
                + ",[^\n]*\"file\":\"([^\"/\\\\]+)\",\"crc\":\"([0-9a-f]+)\"");
        Matcher found = line.matcher(events);
        while (found.find()) {
            File file = new File(folder, found.group(1));
            if (file.isFile() && !to.takeFile(file, found.group(2))) {
                text.element().add("file", file.getName()).add("kept", RecordFolder.TOO_LARGE).end();
            }
        }
    }
}
