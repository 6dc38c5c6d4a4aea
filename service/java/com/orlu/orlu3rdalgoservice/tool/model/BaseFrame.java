package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;

import java.util.List;
import java.util.Map;
import java.util.stream.IntStream;

/**
 * The frame that a request's outputs are compared with.
 *
 * @param index   index of the frame in the request; 0 if there are no frames
 * @param namedBy the result tag that contains the frame's timestamp; "" if no tag names a frame, so that the
 *                first frame is used
 */
public record BaseFrame(int index, String namedBy) {
    private static final String BASE = "orlu.feedback.basicFrameTimestamp";
    private static final String SELECTED = "orlu.feedback.frameSelectResult";

    /**
     * Returns the frame that the results report as the base frame, else the only selected frame, else the
     * first frame. `puts` contains the results in each composition; only the first composition is used.
     */
    public static BaseFrame of(RequestFile request, List<Map<String, Object>> puts) {
        Map<String, Object> put = puts.isEmpty() ? Map.of() : puts.get(0);
        int base = withTimestamp(request, put.get(BASE));
        if (base >= 0) {
            return new BaseFrame(base, BASE);
        }
        base = put.get(SELECTED) instanceof long[] selected && selected.length == 1
                ? withTimestamp(request, selected[0]) : -1;
        return base >= 0 ? new BaseFrame(base, SELECTED) : new BaseFrame(0, "");
    }

    // Returns the index of the frame with this timestamp; -1 if there is none.
    private static int withTimestamp(RequestFile request, Object timestamp) {
        List<FramePlan> frames = request.frames().frames();
        return IntStream.range(0, frames.size()).filter(i -> timestamp != null && timestamp.equals(
                frames.get(i).captureResult().get("android.sensor.timestamp"))).findFirst().orElse(-1);
    }
}
