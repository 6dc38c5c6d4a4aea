package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.awt.image.BufferedImage;
import java.io.ByteArrayInputStream;
import java.io.IOException;
import java.nio.ByteBuffer;
import java.util.Arrays;

import javax.imageio.ImageIO;

/** Reads pictures and mosaics back out of memory. */
final class PixelReader {
    private static final int MIDDLE = 128;

    private PixelReader() {
    }

    /**
     * Whether all pixels of this description lie in a memory of so many bytes. Of odd sizes the last chroma
     * can lie behind the planes' usual end.
     */
    static boolean fits(ImagePlan plan, int capacity) {
        if (plan.width() < 1 || plan.height() < 1
                || (long) plan.strideBytes() * plan.height() > Integer.MAX_VALUE) {
            return false;
        }
        int[] sizes = plan.planeSizes(0);
        long end = Arrays.stream(sizes).asLongStream().sum();
        if (plan.format().isYuv()) {
            int lastX = (plan.width() - 1) / 2;
            long lastRow = sizes[0] + (plan.height() - 1) / 2 * (long) plan.strides()[1];
            end = Math.max(end, 1 + lastRow
                    + (plan.format().isPlanar() ? secondChroma(plan) + lastX : 2 * lastX + 1));
        }
        return end <= capacity;
    }

    /** The picture in a memory of this description; raw formats have none. */
    static Picture readPicture(ImagePlan plan, ByteBuffer from) {
        return switch (plan.format()) {
            case NV21 -> readYuv(plan, from, 1, 0, 2);
            case NV12 -> readYuv(plan, from, 0, 1, 2);
            case YU12 -> readYuv(plan, from, 0, secondChroma(plan), 1);
            case YV12 -> readYuv(plan, from, secondChroma(plan), 0, 1);
            case R8G8B8A8 -> readRgba(plan, from);
            default -> throw new IllegalArgumentException(plan.format() + " holds no picture");
        };
    }

    /** The picture in a JPEG file's bytes, null when no decoder takes them. */
    static Picture decodeJpeg(byte[] bytes) {
        try {
            BufferedImage image = ImageIO.read(new ByteArrayInputStream(bytes));
            return image == null ? null : Picture.of(image);
        } catch (IOException e) {
            return null;
        }
    }

    // Both chroma values are at their own offset behind the luma; step is the distance to the next pair.
    private static Picture readYuv(ImagePlan plan, ByteBuffer from, int blueOffset, int redOffset, int step) {
        Picture picture = new Picture(plan.width(), plan.height());
        int stride = plan.strideBytes();
        int chroma = plan.planeSizes(0)[0];
        int chromaStride = plan.strides()[1];
        for (int y = 0; y < plan.height(); ++y) {
            for (int x = 0; x < plan.width(); ++x) {
                int at = chroma + y / 2 * chromaStride + x / 2 * step;
                float luma = from.get(y * stride + x) & 255;
                float blue = (from.get(at + blueOffset) & 255) - MIDDLE;
                float red = (from.get(at + redOffset) & 255) - MIDDLE;
                picture.set(x, y, luma + 1.402f * red, luma - 0.344136f * blue - 0.714136f * red,
                        luma + 1.772f * blue);
            }
        }
        return picture;
    }

    // Where the second of two chroma planes begins behind the first.
    private static int secondChroma(ImagePlan plan) {
        return plan.strides()[1] * plan.height() / 2;
    }

    private static Picture readRgba(ImagePlan plan, ByteBuffer from) {
        Picture picture = new Picture(plan.width(), plan.height());
        for (int y = 0; y < plan.height(); ++y) {
            for (int x = 0; x < plan.width(); ++x) {
                int at = y * plan.strideBytes() + 4 * x;
                picture.set(x, y, from.get(at) & 255, from.get(at + 1) & 255, from.get(at + 2) & 255);
            }
        }
        return picture;
    }

    /** The samples of a raw image. */
    static Mosaic readMosaic(ImagePlan plan, ByteBuffer from) {
        Mosaic mosaic = new Mosaic(
                plan.width(), plan.height(), plan.bits(), new int[plan.width() * plan.height()]);
        for (int y = 0; y < plan.height(); ++y) {
            for (int x = 0; x < plan.width(); ++x) {
                mosaic.samples()[y * plan.width() + x] = plan.format() == PixelFormat.MIPI_RAW10
                        ? packed10(plan, from, x, y) : from.getShort(y * plan.strideBytes() + 2 * x) & 0xFFFF;
            }
        }
        return mosaic;
    }

    private static int packed10(ImagePlan plan, ByteBuffer from, int x, int y) {
        int group = y * plan.strideBytes() + x / 4 * 5;
        int low = from.get(group + 4) >> (x % 4 * 2) & 3;
        return ((from.get(group + x % 4) & 255) << 2 | low) >> (10 - plan.bits());
    }
}
