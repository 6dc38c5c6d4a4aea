package com.orlu.orlu3rdalgoservice.tool.run;

import android.hardware.camera2.impl.CameraMetadataNative;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.record.HeldValue;

import java.util.Map;

/**
 * A composition that writes an event for each look-up in the composition or its capture result, and for each
 * call of putMetadata().
 */
public final class RecordedComposition extends CaptureResultComposition {
    private final CameraMetadataNative mCaptureResult;

    private EventLog mEvents;
    private int mFrame;

    /** Creates a composition over the camera's metadata. It writes no events yet. */
    public RecordedComposition(CameraMetadataNative captureResult) {
        super(captureResult);
        mCaptureResult = captureResult;
    }

    /** Starts writing to `events`, as frame number `frame` (from 0). If `events` is null, stops writing. */
    public void record(EventLog events, int frame) {
        mEvents = events;
        mFrame = frame;
        mCaptureResult.setLookupListener(events == null ? null
                : (tag, asked, held, thrown) -> lookup("captureResult", tag, asked, held, thrown));
    }

    @Override
    public Object getMetadata(String key) {
        Object value = super.getMetadata(key);
        if (mEvents != null) {
            lookup("composition", key, null, value, null);
        }
        return value;
    }

    @Override
    public void putMetadata(String key, Object value) {
        super.putMetadata(key, value);
        if (mEvents != null) {
            Map<String, Object> line = mEvents.begin("put", "frame", mFrame, "tag", key);
            addHeld(line, value);
            mEvents.write(line);
        }
    }

    private void lookup(String source, String tag, Class<?> asked, Object held, RuntimeException thrown) {
        Map<String, Object> line = mEvents.begin("lookup", "frame", mFrame, "source", source, "tag", tag,
                "outcome", outcome(held, thrown));
        if (asked != null) {
            line.put("asked", asked.getSimpleName());
        }
        addHeld(line, held);
        if (thrown != null) {
            line.put("what", thrown.toString());
        }
        mEvents.write(line);
    }

    private static String outcome(Object held, RuntimeException thrown) {
        if (thrown != null) {
            return held == null ? "thrown" : "wrongType";
        }
        return held == null ? "absent" : "found";
    }

    private static void addHeld(Map<String, Object> line, Object held) {
        if (held != null) {
            line.put("held", held.getClass().getSimpleName());
            line.put("value", HeldValue.json(held));
        }
    }
}
