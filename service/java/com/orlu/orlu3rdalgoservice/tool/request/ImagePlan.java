package com.orlu.orlu3rdalgoservice.tool.request;

/**
 * One image as a request file describes it.
 *
 * @param format   the layout of the pixels
 * @param name     the format's name that the native side gets
 * @param hardware in a hardware buffer instead of shared memory
 * @param width    pixels, 0 for the frames' width
 * @param height   pixels, 0 for the frames' height
 * @param stride   bytes a row, 0 for rows without padding
 * @param capacity bytes that the memory holds at least, 0 for what the pixels need
 * @param bits     bits of a raw sample
 * @param frame    which frame's pixels an input takes
 */
public record ImagePlan(PixelFormat format, String name, boolean hardware, int width, int height, int stride,
        int capacity, int bits, int frame) {
    ImagePlan withFrame(int index) {
        return new ImagePlan(format, name, hardware, width, height, stride, capacity, bits, index);
    }

    /** The same image with the frames' size where the file gives none. */
    public ImagePlan sized(int frameWidth, int frameHeight) {
        return new ImagePlan(format, name, hardware, width > 0 ? width : frameWidth,
                height > 0 ? height : frameHeight, stride, capacity, bits, frame);
    }

    public int strideBytes() {
        return Math.max(stride, format.tightStride(width));
    }
}
