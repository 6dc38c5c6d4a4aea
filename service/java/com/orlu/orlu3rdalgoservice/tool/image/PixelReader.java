package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.imagefile.PictureFile;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.io.IOException;
import java.nio.ByteBuffer;
import java.util.Arrays;

/** Reads pictures and mosaics from an image's memory. */
final class PixelReader {
    private static final int MIDDLE = 128;

    private PixelReader() {
    }

    /** Returns whether all planes that `plan` describes fit into `capacity` bytes. */
    static boolean fits(ImagePlan plan, int capacity) {
        if (plan.width() < 1 || plan.height() < 1
                || (long) plan.strideBytes() * plan.height() * 3 / 2 > Integer.MAX_VALUE) {
            return false;
        }
        long end = Arrays.stream(plan.planeSizes(0)).asLongStream().sum();
        if (plan.format().isYuv()) {
            end = Math.max(end, YuvLayout.of(plan).end(plan.width(), plan.height()));
        }
        return end <= capacity;
    }

    /**
     * Returns the YUV or RGBA picture that `plan` describes. The picture reads its rows from `from`, which
     * must stay valid while the picture is used.
     */
    static PixelRows picture(ImagePlan plan, ByteBuffer from) {
        YuvLayout layout = plan.format().isYuv() ? YuvLayout.of(plan) : null;
        if (layout == null && plan.format() != PixelFormat.R8G8B8A8) {
            throw new IllegalArgumentException(plan.format() + " is neither YUV nor RGBA");
        }
        return new PixelRows() {
            @Override
            public int width() {
                return plan.width();
            }

            @Override
            public int height() {
                return plan.height();
            }

            @Override
            public void read(int y, float[] to) {
                if (layout == null) {
                    readRgba(bytes(from, y * plan.strideBytes(), 4 * plan.width()), to);
                } else {
                    readYuv(layout, from, y, plan.width(), to);
                }
            }
        };
    }

    /** Decodes a JPEG file; returns null if it can't be decoded. */
    static PixelRows decodeJpeg(byte[] bytes) {
        try {
            return new ImageRows(PictureFile.decode(bytes));
        } catch (IOException e) {
            return null;
        }
    }

    private static byte[] bytes(ByteBuffer from, int at, int count) {
        byte[] bytes = new byte[count];
        from.get(at, bytes);
        return bytes;
    }

    private static void readYuv(YuvLayout layout, ByteBuffer from, int y, int width, float[] to) {
        byte[] lumas = bytes(from, y * layout.stride(), width);
        int chromaRow = y / 2 * layout.chromaStride();
        int chromaBytes = (width - 1) / 2 * layout.step() + 1;
        byte[] blues = bytes(from, chromaRow + layout.blue(), chromaBytes);
        byte[] reds = bytes(from, chromaRow + layout.red(), chromaBytes);
        float blue = 0;
        float red = 0;
        for (int x = 0, at = 0; x < width; ++x, at += PixelRows.CHANNELS) {
            if (x % 2 == 0) {
                blue = (blues[x / 2 * layout.step()] & 255) - MIDDLE;
                red = (reds[x / 2 * layout.step()] & 255) - MIDDLE;
            }
            float luma = lumas[x] & 255;
            to[at] = PixelRows.clip(luma + 1.402f * red);
            to[at + 1] = PixelRows.clip(luma - 0.344136f * blue - 0.714136f * red);
            to[at + 2] = PixelRows.clip(luma + 1.772f * blue);
        }
    }

    private static void readRgba(byte[] row, float[] to) {
        for (int from = 0, at = 0; from < row.length; from += 4, at += PixelRows.CHANNELS) {
            to[at] = row[from] & 255;
            to[at + 1] = row[from + 1] & 255;
            to[at + 2] = row[from + 2] & 255;
        }
    }

    static Mosaic readMosaic(ImagePlan plan, ByteBuffer from) {
        int width = plan.width();
        int[] samples = new int[width * plan.height()];
        int rowBytes = plan.format().tightStride(width);
        for (int y = 0; y < plan.height(); ++y) {
            byte[] row = bytes(from, y * plan.strideBytes(), rowBytes);
            for (int x = 0; x < width; ++x) {
                samples[y * width + x] = plan.format() == PixelFormat.MIPI_RAW10
                        ? packed10(row, x) >> (10 - plan.bits()) : row[2 * x] & 255 | (row[2 * x + 1] & 255) << 8;
            }
        }
        return new Mosaic(width, plan.height(), plan.bits(), samples);
    }

    private static int packed10(byte[] row, int x) {
        int group = x / 4 * 5;
        int low = row[group + 4] >> (x % 4 * 2) & 3;
        return (row[group + x % 4] & 255) << 2 | low;
    }
}
