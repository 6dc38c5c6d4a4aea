package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.CameraMetadataNative;

import java.util.Map;

/**
 * One frame of a request: what the camera reported, what the service says over it, and how the frame's pixels
 * are made of the photo.
 *
 * @param captureResult the camera's report
 * @param composition   the service's own values
 * @param noise         standard deviation of the noise, of 255
 * @param blur          standard deviation of the blur, in pixels
 * @param gain          factor on the brightness
 * @param shift         {x, y} in pixels, null for one drawn by the request's seed
 */
public record FramePlan(CameraMetadataNative captureResult, Map<String, Object> composition, double noise,
        double blur, double gain, int[] shift) {
}
