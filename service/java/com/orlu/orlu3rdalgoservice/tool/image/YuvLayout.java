package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;

/**
 * The layout of a YUV image in memory. All numbers are in bytes.
 *
 * @param stride       distance between rows of luma
 * @param chromaStride distance between rows of chroma
 * @param blue         offset of the first blue difference
 * @param red          offset of the first red difference
 * @param step         distance between samples of the same difference in a row
 */
record YuvLayout(int stride, int chromaStride, int blue, int red, int step) {
    static YuvLayout of(ImagePlan plan) {
        int chroma = plan.planeSizes(0)[0];
        int chromaStride = plan.strides()[1];
        int second = chroma + chromaStride * plan.height() / 2;
        return switch (plan.format()) {
            case NV21 -> new YuvLayout(plan.strideBytes(), chromaStride, chroma + 1, chroma, 2);
            case NV12 -> new YuvLayout(plan.strideBytes(), chromaStride, chroma, chroma + 1, 2);
            case YU12 -> new YuvLayout(plan.strideBytes(), chromaStride, chroma, second, 1);
            case YV12 -> new YuvLayout(plan.strideBytes(), chromaStride, second, chroma, 1);
            default -> throw new IllegalArgumentException(plan.format() + " is not a YUV format");
        };
    }

    /**
     * Returns the offset after the last sample of an image of this size. If the width or height is odd, this
     * offset can lie beyond the end of the planes.
     */
    long end(int width, int height) {
        long lastRow = (height - 1) / 2 * (long) chromaStride;
        return 1 + Math.max(blue, red) + lastRow + (width - 1) / 2 * step;
    }
}
