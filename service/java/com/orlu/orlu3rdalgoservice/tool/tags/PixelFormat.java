package com.orlu.orlu3rdalgoservice.tool.tags;

import java.util.Arrays;
import java.util.List;

/** The image formats that the tool reads and writes, by the native side's names. */
public enum PixelFormat {
    NV21,
    NV12,
    YU12,
    YV12,
    MIPI_RAW10,
    RAW16,
    RAW_SENSOR,
    R8G8B8A8,
    JPEG;

    /** Returns the format with this name; null if there is none. */
    public static PixelFormat named(String name) {
        return Arrays.stream(values()).filter(format -> format.name().equals(name)).findFirst().orElse(null);
    }

    public static List<String> names() {
        return Arrays.stream(values()).map(Enum::name).toList();
    }

    public boolean isRaw() {
        return this == MIPI_RAW10 || this == RAW16 || this == RAW_SENSOR;
    }

    /** The largest bit depth of a raw sample. */
    public int mostBits() {
        return this == MIPI_RAW10 ? 10 : 16;
    }

    public boolean isYuv() {
        return this == NV21 || this == NV12 || isPlanar();
    }

    /** Whether the chroma has two separate planes. */
    public boolean isPlanar() {
        return this == YU12 || this == YV12;
    }

    /** Bytes per row without padding; the width for a JPEG, which has no rows. */
    public int tightStride(int width) {
        return switch (this) {
            case MIPI_RAW10 -> (width + 3) / 4 * 5;
            case RAW16, RAW_SENSOR -> width * 2;
            case R8G8B8A8 -> width * 4;
            default -> width;
        };
    }

    /** Bytes per row of a plane without padding. */
    public int rowBytes(int plane, int width) {
        return plane > 0 && isPlanar() ? width / 2 : tightStride(width);
    }

    /** Row strides in bytes: `stride` for the first plane, and the chroma's stride if the format is YUV. */
    public int[] strides(int stride) {
        return isYuv() ? new int[] {stride, isPlanar() ? stride / 2 : stride} : new int[] {stride};
    }

    /** Sizes in bytes: the first plane, and all chroma together if the format is YUV. JPEG: `capacity`. */
    public int[] planeSizes(int stride, int height, int capacity) {
        if (this == JPEG) {
            return new int[] {capacity};
        }
        return isYuv() ? new int[] {stride * height, stride * height / 2} : new int[] {stride * height};
    }

    /** The platform's number of the format. The service passes this number when it releases a client. */
    public int platformCode() {
        return switch (this) {
            case MIPI_RAW10 -> 37;
            case RAW16, RAW_SENSOR -> 32;
            case R8G8B8A8 -> 1;
            case JPEG -> 256;
            default -> 35;
        };
    }
}
