package com.orlu.orlu3rdalgoservice.tool.check;

import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;
import com.orlu.orlu3rdalgoservice.tool.request.ImageFile;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.HashMap;
import java.util.List;
import java.util.Map;

/** Warns about image sizes that are valid but probably unintended. */
final class SizeAdvice {
    /** The most pixels per byte of a JPEG. With more pixels per byte, the quality is poor. */
    private static final int PIXELS_A_BYTE = 16;

    private SizeAdvice() {
    }

    /** Reports warnings about a request; `inputs` and `outputs` are its images, with their sizes. */
    static void give(RequestFile request, List<ImagePlan> inputs, List<ImagePlan> outputs) {
        onFrameSize(request);
        inputs.forEach(SizeAdvice::onStride);
        onInputSizes(inputs);
        onFiles(inputs);
        for (ImagePlan output : outputs) {
            onStride(output);
            onCapacity(output);
        }
    }

    // Warns if the size in "frames" is not used. Without a photo, images without a size of their own get the
    // size of the first input's file.
    private static void onFrameSize(RequestFile request) {
        ImagePlan first = request.inputs().isEmpty() ? null : request.inputs().get(0);
        boolean isOther = first != null && first.file() != null && !request.needsPhoto()
                && (first.width() != request.frames().width() || first.height() != request.frames().height());
        if (isOther && request.frames().width() > 0) {
            request.place().warn("frames", "this size is not used; expected " + size(first)
                    + ", as in the first input's file, found " + request.frames().width() + "x" + request.frames().height());
        }
    }

    // For RAW16, the native library passes the width, not the stride, to the algorithm library.
    private static void onStride(ImagePlan image) {
        int row = image.format().tightStride(image.width());
        if (image.format() == PixelFormat.RAW16 && image.strideBytes() > row) {
            image.place().warn("stride", "rows of RAW16 can't have padding: the library passes the width, not "
                    + "the stride; expected " + row + " (or RAW_SENSOR), found " + image.strideBytes());
        }
    }

    // Compares images that have the same index in their frames. Images of one frame may differ in size,
    // because the second image may come from another camera.
    private static void onInputSizes(List<ImagePlan> inputs) {
        Map<Integer, Integer> ofFrame = new HashMap<>();
        Map<Integer, ImagePlan> first = new HashMap<>();
        for (ImagePlan image : inputs) {
            int index = ofFrame.merge(image.frame(), 1, Integer::sum);
            ImagePlan other = first.putIfAbsent(index, image);
            if (other != null && (other.width() != image.width() || other.height() != image.height())) {
                image.place().warn("width", "image " + (index - 1) + " of frame " + image.frame()
                        + ": expected the size " + size(other) + ", as in frame " + other.frame() + ", found "
                        + size(image));
            }
        }
    }

    private static String size(ImagePlan image) {
        return image.width() + "x" + image.height();
    }

    private static void onCapacity(ImagePlan output) {
        int pixels = output.width() * output.height();
        if (output.format() != PixelFormat.JPEG && output.capacity() > 0) {
            int needed = 0;
            for (int plane : output.planeSizes(0)) {
                needed += plane;
            }
            if (output.capacity() < needed) {
                output.place().warn("capacity", "expected at least " + needed + " bytes for the pixels, found "
                        + output.capacity() + "; " + needed + " are allocated");
            }
        } else if (output.capacity() > 0 && output.capacity() < pixels / PIXELS_A_BYTE) {
            output.place().warn("capacity", "probably too small for a JPEG of " + size(output)
                    + "; expected at least " + pixels / PIXELS_A_BYTE + " bytes, found " + output.capacity());
        }
    }

    // Warns of bytes after the last pixels in a file. Either the file contains another image, or the size or
    // the stride is wrong.
    private static void onFiles(List<ImagePlan> inputs) {
        Map<Path, Long> ends = new HashMap<>();
        inputs.stream().filter(SizeAdvice::isOfBytes).forEach(image -> ends.merge(
                image.file().path(), end(image.file()), Math::max));
        for (ImagePlan image : inputs) {
            if (isOfBytes(image) && ends.containsKey(image.file().path())) {
                long end = ends.remove(image.file().path());
                onRest(image, end, sizeOf(image.file().path()));
            }
        }
    }

    private static boolean isOfBytes(ImagePlan image) {
        return image.file() != null && image.file().kind() == ImageFileKind.BYTES
                && image.format() != PixelFormat.JPEG;
    }

    private static long end(ImageFile file) {
        return file.planes().stream().mapToLong(plane -> plane.offset() + plane.size()).max().orElse(0);
    }

    private static long sizeOf(Path path) {
        try {
            return Files.size(path);
        } catch (IOException e) {
            return 0;
        }
    }

    private static void onRest(ImagePlan image, long end, long size) {
        if (size <= end) {
            return;
        }
        List<ImageFile.Plane> planes = image.file().planes();
        long pixels = size - planes.get(0).offset();
        // The luma rows are followed by half as many chroma rows.
        long rows = planes.size() == 1 ? image.height() : image.height() * 3L / 2;
        long row = pixels / rows;
        boolean fits = pixels % rows == 0 && row > image.strideBytes() && row < 2L * image.strideBytes();
        image.place().warn("file", image.file().path() + " has " + (size - end)
                + " bytes after the last plane"
                + (fits ? "; a stride of " + row + " bytes would use the whole file" : ""));
    }
}
