package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.imagefile.SampleSink;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.nio.ByteBuffer;

/** Writes a picture to memory in the format of an ImagePlan. Chroma is subsampled 2x2, as in JPEG files. */
final class PixelWriter {
    private static final float JPEG_QUALITY = 0.95f;
    private static final int MIDDLE = 128;

    private PixelWriter() {
    }

    /** Fills the memory from its start. The picture must have the size of the plan. */
    static void write(Picture picture, ImagePlan plan, ByteBuffer to) {
        switch (plan.format()) {
            case NV21, NV12, YU12, YV12 -> writeYuv(picture, YuvLayout.of(plan), to);
            case MIPI_RAW10, RAW16, RAW_SENSOR -> Mosaic.of(picture, plan.bits()).copyTo(samples(plan, to));
            case R8G8B8A8 -> writeRgba(picture, plan.strideBytes(), to);
            case JPEG -> throw new IllegalArgumentException("a JPEG needs encodeJpeg()");
        }
    }

    static byte[] encodeJpeg(PixelRows picture) {
        return JpegEncoder.encode(picture.toImage(), JPEG_QUALITY);
    }

    private static void writeYuv(Picture picture, YuvLayout layout, ByteBuffer to) {
        byte[] lumas = new byte[picture.width()];
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < lumas.length; ++x) {
                lumas[x] = (byte) PixelRows.round(picture.luma(x, y));
            }
            to.put(y * layout.stride(), lumas);
        }
        for (int y = 0; y < picture.height() / 2; ++y) {
            for (int x = 0; x < picture.width() / 2; ++x) {
                int at = y * layout.chromaStride() + x * layout.step();
                to.put(layout.blue() + at, chroma(picture, x, y, -0.168736f, -0.331264f, 0.5f));
                to.put(layout.red() + at, chroma(picture, x, y, 0.5f, -0.418688f, -0.081312f));
            }
        }
    }

    private static byte chroma(Picture picture, int x, int y, float red, float green, float blue) {
        float sum = 0;
        for (int corner = 0; corner < 4; ++corner) {
            int atX = 2 * x + corner % 2;
            int atY = 2 * y + corner / 2;
            sum += red * picture.get(atX, atY, 0) + green * picture.get(atX, atY, 1)
                    + blue * picture.get(atX, atY, 2);
        }
        return (byte) Math.min(255, Math.round(MIDDLE + sum / 4));
    }

    /** Returns a sink that writes a raw image. Pass it the samples in row order. */
    static SampleSink samples(ImagePlan plan, ByteBuffer to) {
        int stride = plan.strideBytes();
        if (plan.format() == PixelFormat.MIPI_RAW10) {
            int shift = 10 - plan.bits();
            return (x, y, sample) -> putPacked10(to, y * stride, x, sample << shift);
        }
        return (x, y, sample) -> to.putShort(y * stride + 2 * x, (short) sample);
    }

    // Five bytes store four samples: the upper eight bits of each, then the lower two bits of all four.
    private static void putPacked10(ByteBuffer to, int row, int x, int sample) {
        int group = row + x / 4 * 5;
        int low = group + 4;
        to.put(group + x % 4, (byte) (sample >> 2));
        int keep = x % 4 == 0 ? 0 : to.get(low);
        to.put(low, (byte) (keep | (sample & 3) << (x % 4 * 2)));
    }

    private static void writeRgba(Picture picture, int stride, ByteBuffer to) {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                int at = y * stride + 4 * x;
                for (int channel = 0; channel < PixelRows.CHANNELS; ++channel) {
                    to.put(at + channel, (byte) picture.byteAt(x, y, channel));
                }
                to.put(at + 3, (byte) 255);
            }
        }
    }
}
