package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.CameraMetadataNative;

import java.util.Map;

/**
 * One frame of a request.
 *
 * @param captureResult the camera's report
 * @param composition   the service's own values
 * @param noise         standard deviation of the noise, on a scale of 255
 * @param blur          standard deviation of the blur, in pixels
 * @param gain          factor for the brightness
 * @param shift         {x, y} in pixels; null for a random shift; in the first frame, null for no shift
 */
public record FramePlan(CameraMetadataNative captureResult, Map<String, Object> composition, double noise,
        double blur, double gain, int[] shift) {
}
