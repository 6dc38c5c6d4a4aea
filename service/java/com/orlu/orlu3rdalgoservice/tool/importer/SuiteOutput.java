package com.orlu.orlu3rdalgoservice.tool.importer;

import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;
import com.orlu.orlu3rdalgoservice.tool.request.PixelFormat;

import java.nio.file.Path;
import java.util.Map;
import java.util.TreeMap;

/**
 * A picture that an image test says it wrote.
 *
 * @param name   of the format there
 * @param format of the pixels
 * @param kind   of the file that they are in
 * @param width  pixels
 * @param height pixels
 */
record SuiteOutput(String name, PixelFormat format, ImageFileKind kind, int width, int height) {
    /** The names of the formats there; YUV pictures have their three planes one after the other. */
    static final Map<String, PixelFormat> FORMATS = new TreeMap<>(Map.of("raw", PixelFormat.RAW16,
            "raw10", PixelFormat.MIPI_RAW10, "yuv", PixelFormat.YU12, "jpeg", PixelFormat.JPEG,
            "jpg", PixelFormat.JPEG, "dng", PixelFormat.RAW16));
    private static final int LARGEST_SIDE = 1 << 14;

    /** Of an element of "outputs"; null when it is none. */
    static SuiteOutput of(JsonElement element) {
        if (!element.isJsonObject()) {
            return null;
        }
        JsonObject output = element.getAsJsonObject();
        String name = output.has("format") && output.get("format").isJsonPrimitive()
                ? output.get("format").getAsString() : "";
        int width = side(output.get("width"));
        int height = side(output.get("height"));
        ImageFileKind kind = ImageFileKind.of(Path.of("a." + name.replaceAll("\\W", "")));
        return FORMATS.containsKey(name) && width > 0 && height > 0
                ? new SuiteOutput(name, FORMATS.get(name), kind, width, height) : null;
    }

    private static int side(JsonElement element) {
        if (element == null || !element.isJsonPrimitive() || !element.getAsJsonPrimitive().isNumber()) {
            return 0;
        }
        double side = element.getAsDouble();
        return side == Math.rint(side) && side <= LARGEST_SIDE ? (int) side : 0;
    }

    /** Whether a file of this many bytes without a header can be it. */
    boolean isOfSize(long bytes) {
        long size = 0;
        for (int plane : format.planeSizes(format.tightStride(width), height, 0)) {
            size += plane;
        }
        return kind == ImageFileKind.BYTES && size == bytes;
    }
}
