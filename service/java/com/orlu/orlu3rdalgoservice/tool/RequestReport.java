package com.orlu.orlu3rdalgoservice.tool;

import java.util.ArrayList;
import java.util.List;
import java.util.Map;

/** All that happened to one request. Filled in by RequestRunner, read by the printers. */
final class RequestReport {
    final RequestFile request;
    final Stopwatch stopwatch = new Stopwatch();
    /** The images as they were handed in, with their sizes. */
    final List<ImagePlan> inputs = new ArrayList<>();
    /** Descriptions of the outputs before and after. */
    final List<ImageState> outputsBefore = new ArrayList<>();
    final List<ImageState> outputsAfter = new ArrayList<>();
    /** For each composition, the keys that the native side put or changed. */
    final List<Map<String, Object>> put = new ArrayList<>();
    /** What was reported to Java while the request ran. */
    List<Map<String, Object>> callbacks = List.of();
    /** What the algorithm library traced; null when it doesn't. */
    Trace trace;
    /** Lines on the images that were written. */
    final List<String> images = new ArrayList<>();
    /** Lines on how much noise went. */
    final List<String> noise = new ArrayList<>();
    /** What went wrong, for people. Empty when the request went through. */
    final List<String> problems = new ArrayList<>();

    RequestReport(RequestFile request) {
        this.request = request;
    }

    /** The algorithm list that the request asks for, empty when it has none. */
    List<String> askedAlgorithms() {
        List<FramePlan> frames = request.frames().frames();
        Object list = frames.isEmpty() ? null : frames.get(0).composition().get("orlu.control.algoType");
        return list instanceof String[] names ? List.of(names) : List.of();
    }

    /** The frame that the algorithms took as base, by the timestamp that they answer; else the first. */
    int baseFrame() {
        Object timestamp = put.isEmpty() ? null : put.get(0).get("orlu.feedback.basicFrameTimestamp");
        List<FramePlan> frames = request.frames().frames();
        for (int i = 0; timestamp != null && i < frames.size(); ++i) {
            if (timestamp.equals(frames.get(i).captureResult().get("android.sensor.timestamp"))) {
                return i;
            }
        }
        return 0;
    }
}
