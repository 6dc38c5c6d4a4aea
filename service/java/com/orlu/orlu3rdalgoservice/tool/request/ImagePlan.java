package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Place;

import java.util.List;

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
 * @param frame    which frame an input belongs to
 * @param file     what an input's pixels come from, null for the request's photo
 * @param place    the description in the request file, for errors
 */
public record ImagePlan(PixelFormat format, String name, boolean hardware, int width, int height, int stride,
        int capacity, int bits, int frame, ImageFile file, Place place) {
    ImagePlan withFrame(int index) {
        return new ImagePlan(
                format, name, hardware, width, height, stride, capacity, bits, index, file, place);
    }

    ImagePlan withFile(ImageFile pixels) {
        return new ImagePlan(
                format, name, hardware, width, height, stride, capacity, bits, frame, pixels, place);
    }

    /** The same image with the frames' size where the file gives none. A stride below a row is an error. */
    public ImagePlan sized(int frameWidth, int frameHeight) throws MistakeException {
        ImagePlan sized = new ImagePlan(format, name, hardware, width > 0 ? width : frameWidth,
                height > 0 ? height : frameHeight, stride, capacity, bits, frame, file, place);
        int row = format.tightStride(sized.width);
        if (stride > 0 && stride < row) {
            throw place.error("stride", "needs at least " + row + " bytes, a row of " + sized.width
                    + " pixels, found " + stride);
        }
        return sized;
    }

    public int strideBytes() {
        return Math.max(stride, format.tightStride(width));
    }

    /** Bytes a row of each plane. */
    public int[] strides() {
        List<ImageFile.Plane> planes = filePlanes();
        return planes.isEmpty() ? format.strides(strideBytes())
                : planes.stream().mapToInt(ImageFile.Plane::stride).toArray();
    }

    /** Bytes of each plane; a JPEG that comes from no file may fill the capacity. */
    public int[] planeSizes(int jpegCapacity) {
        List<ImageFile.Plane> planes = filePlanes();
        return planes.isEmpty() ? format.planeSizes(strideBytes(), height, jpegCapacity)
                : planes.stream().mapToInt(ImageFile.Plane::size).toArray();
    }

    private List<ImageFile.Plane> filePlanes() {
        return file == null ? List.of() : file.planes();
    }
}
