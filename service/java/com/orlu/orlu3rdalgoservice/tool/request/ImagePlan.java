package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.List;

/**
 * One image of a request, as the request file or a recording describes it.
 *
 * @param name     the format's name for the native side
 * @param hardware whether its memory is a hardware buffer instead of shared memory
 * @param width    width in pixels; 0 for the frames' width
 * @param height   height in pixels; 0 for the frames' height
 * @param stride   bytes per row; 0 for rows without padding
 * @param capacity minimum size of its memory, in bytes; 0 for the size of the pixels
 * @param bits     bits of a raw sample
 * @param frame    index of an input's frame
 * @param file     the source of an input's pixels; null for the request's photo
 * @param place    the image's description in the file; error messages show its location
 * @param layout   a recorded image's exact description, which overrides all else; null if not recorded
 */
public record ImagePlan(PixelFormat format, String name, boolean hardware, int width, int height, int stride,
        int capacity, int bits, int frame, ImageFile file, Json place, ImageLayout layout) {
    public ImagePlan(PixelFormat format, String name, boolean hardware, int width, int height, int stride,
            int capacity, int bits, int frame, ImageFile file, Json place) {
        this(format, name, hardware, width, height, stride, capacity, bits, frame, file, place, null);
    }

    /** Returns the plan for a recorded image. An unknown format is treated as JPEG: bytes without rows. */
    static ImagePlan exact(ImageLayout layout, Json place) {
        PixelFormat known = PixelFormat.named(layout.format());
        PixelFormat format = known == null ? PixelFormat.JPEG : known;
        int[] strides = layout.rowStrides();
        return new ImagePlan(format, layout.format(), layout.memory().equals("hardware"), layout.width(),
                layout.height(), strides == null || strides.length == 0 ? 0 : strides[0], 0,
                Math.min(ImagePlanReader.USUAL_BITS, format.mostBits()), Math.max(0, layout.frame()), null,
                place,
                layout);
    }

    ImagePlan withFile(ImageFile pixels) {
        return new ImagePlan(
                format, name, hardware, width, height, stride, capacity, bits, frame, pixels, place);
    }

    /** Returns the plan with the frames' width or height in place of 0. Throws if the stride is too small. */
    public ImagePlan sized(int frameWidth, int frameHeight) throws MistakeException {
        if (layout != null) {
            return this;
        }
        ImagePlan sized = new ImagePlan(format, name, hardware, width > 0 ? width : frameWidth,
                height > 0 ? height : frameHeight, stride, capacity, bits, frame, file, place);
        int row = format.tightStride(sized.width);
        if (stride > 0 && stride < row) {
            throw place.error("stride", "expected at least " + row + " bytes (a row of " + sized.width
                    + " pixels), found " + stride);
        }
        return sized;
    }

    /** Whether the pixels are made from the request's photo. */
    public boolean isOfPhoto() {
        return file == null && layout == null;
    }

    public int strideBytes() {
        return Math.max(stride, format.tightStride(width));
    }

    /** Bytes per row, for each plane. */
    public int[] strides() {
        List<ImageFile.Plane> planes = filePlanes();
        return planes.isEmpty() ? format.strides(strideBytes())
                : planes.stream().mapToInt(ImageFile.Plane::stride).toArray();
    }

    /** Bytes of each plane; `jpegCapacity` for a JPEG without a file. */
    public int[] planeSizes(int jpegCapacity) {
        List<ImageFile.Plane> planes = filePlanes();
        return planes.isEmpty() ? format.planeSizes(strideBytes(), height, jpegCapacity)
                : planes.stream().mapToInt(ImageFile.Plane::size).toArray();
    }

    private List<ImageFile.Plane> filePlanes() {
        return file == null ? List.of() : file.planes();
    }
}
