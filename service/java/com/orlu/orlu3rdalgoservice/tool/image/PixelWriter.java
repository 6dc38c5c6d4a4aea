package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.imagefile.SampleSink;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.nio.ByteBuffer;

/**
 * Writes a picture into memory in one of the formats. Chroma is that of JPEG files, one value for four
 * pixels.
 */
final class PixelWriter {
    private static final float JPEG_QUALITY = 0.95f;
    private static final int MIDDLE = 128;

    private PixelWriter() {
    }

    /** Fills the memory from its start; the picture has the size of the description. */
    static void write(Picture picture, ImagePlan plan, ByteBuffer to) {
        switch (plan.format()) {
            case NV21 -> writeYuv(picture, plan, to, 1, 0, 2);
            case NV12 -> writeYuv(picture, plan, to, 0, 1, 2);
            case YU12 -> writeYuv(picture, plan, to, 0, plan.strideBytes() * plan.height() / 4, 1);
            case YV12 -> writeYuv(picture, plan, to, plan.strideBytes() * plan.height() / 4, 0, 1);
            case MIPI_RAW10, RAW16, RAW_SENSOR -> Mosaic.of(picture, plan.bits()).copyTo(samples(plan, to));
            case R8G8B8A8 -> writeRgba(picture, plan.strideBytes(), to);
            case JPEG -> throw new IllegalArgumentException("a JPEG is encoded");
        }
    }

    /** The picture as the bytes of a JPEG file. */
    static byte[] encodeJpeg(Picture picture) {
        return JpegEncoder.encode(picture.toImage(), JPEG_QUALITY);
    }

    // Both chroma values stand at their own offset behind the luma; step is the distance to the next pair.
    private static void writeYuv(
            Picture picture, ImagePlan plan, ByteBuffer to, int blueOffset, int redOffset, int step) {
        int stride = plan.strideBytes();
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                to.put(y * stride + x, (byte) Math.round(picture.luma(x, y)));
            }
        }
        int chroma = stride * picture.height();
        int chromaStride = stride * step / 2;
        for (int y = 0; y < picture.height() / 2; ++y) {
            for (int x = 0; x < picture.width() / 2; ++x) {
                int at = chroma + y * chromaStride + x * step;
                to.put(at + blueOffset, chroma(picture, x, y, -0.168736f, -0.331264f, 0.5f));
                to.put(at + redOffset, chroma(picture, x, y, 0.5f, -0.418688f, -0.081312f));
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

    /** Writes samples of a raw image one by one, row by row. */
    static SampleSink samples(ImagePlan plan, ByteBuffer to) {
        int stride = plan.strideBytes();
        if (plan.format() == PixelFormat.MIPI_RAW10) {
            int shift = 10 - plan.bits();
            return (x, y, sample) -> putPacked10(to, y * stride, x, sample << shift);
        }
        return (x, y, sample) -> to.putShort(y * stride + 2 * x, (short) sample);
    }

    // Four samples in five bytes: the upper eight bits of each, then the lower two of all.
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
                for (int channel = 0; channel < Picture.CHANNELS; ++channel) {
                    to.put(at + channel, (byte) picture.byteAt(x, y, channel));
                }
                to.put(at + 3, (byte) 255);
            }
        }
    }
}
