package com.orlu.orlu3rdalgoservice.tool;

import java.awt.image.BufferedImage;
import java.io.ByteArrayInputStream;
import java.io.IOException;
import java.nio.ByteBuffer;

import javax.imageio.ImageIO;

/** Reads pictures and mosaics back out of memory. */
final class PixelReader {
    private static final int MIDDLE = 128;

    private PixelReader() {
    }

    /** The picture in a memory of this description; raw formats have none. */
    static Picture readPicture(ImagePlan spec, ByteBuffer from) {
        return switch (spec.format()) {
            case NV21 -> readYuv(spec, from, 1, 0, 2);
            case NV12 -> readYuv(spec, from, 0, 1, 2);
            case YU12 -> readYuv(spec, from, 0, spec.strideBytes() * spec.height() / 4, 1);
            case YV12 -> readYuv(spec, from, spec.strideBytes() * spec.height() / 4, 0, 1);
            case R8G8B8A8 -> readRgba(spec, from);
            default -> throw new IllegalArgumentException(spec.format() + " holds no picture");
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

    private static Picture readYuv(ImagePlan spec, ByteBuffer from, int blueOffset, int redOffset, int step) {
        Picture picture = new Picture(spec.width(), spec.height());
        int stride = spec.strideBytes();
        int chroma = stride * spec.height();
        for (int y = 0; y < spec.height(); ++y) {
            for (int x = 0; x < spec.width(); ++x) {
                int at = chroma + y / 2 * (stride * step / 2) + x / 2 * step;
                float luma = from.get(y * stride + x) & 255;
                float blue = (from.get(at + blueOffset) & 255) - MIDDLE;
                float red = (from.get(at + redOffset) & 255) - MIDDLE;
                picture.set(x, y, luma + 1.402f * red, luma - 0.344136f * blue - 0.714136f * red,
                        luma + 1.772f * blue);
            }
        }
        return picture;
    }

    private static Picture readRgba(ImagePlan spec, ByteBuffer from) {
        Picture picture = new Picture(spec.width(), spec.height());
        for (int y = 0; y < spec.height(); ++y) {
            for (int x = 0; x < spec.width(); ++x) {
                int at = y * spec.strideBytes() + 4 * x;
                picture.set(x, y, from.get(at) & 255, from.get(at + 1) & 255, from.get(at + 2) & 255);
            }
        }
        return picture;
    }

    /** The samples of a raw image. */
    static Mosaic readMosaic(ImagePlan spec, ByteBuffer from) {
        Mosaic mosaic = new Mosaic(
                spec.width(), spec.height(), spec.bits(), new int[spec.width() * spec.height()]);
        for (int y = 0; y < spec.height(); ++y) {
            for (int x = 0; x < spec.width(); ++x) {
                mosaic.samples()[y * spec.width() + x] = spec.format() == PixelFormat.MIPI_RAW10
                        ? packed10(spec, from, x, y) : from.getShort(y * spec.strideBytes() + 2 * x) & 0xFFFF;
            }
        }
        return mosaic;
    }

    private static int packed10(ImagePlan spec, ByteBuffer from, int x, int y) {
        int group = y * spec.strideBytes() + x / 4 * 5;
        int low = from.get(group + 4) >> (x % 4 * 2) & 3;
        return ((from.get(group + x % 4) & 255) << 2 | low) >> (10 - spec.bits());
    }
}
