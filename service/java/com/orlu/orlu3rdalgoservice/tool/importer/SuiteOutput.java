package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.request.Limits;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.nio.file.Path;
import java.util.Map;
import java.util.TreeMap;

/** A picture listed in an image test's JSON; `name` is the image test's name for the format. */
record SuiteOutput(String name, PixelFormat format, ImageFileKind kind, int width, int height) {
    /** The pixel format for each format name of image tests. YUV pictures have three contiguous planes. */
    static final Map<String, PixelFormat> FORMATS = new TreeMap<>(Map.of("raw", PixelFormat.RAW16,
            "raw10", PixelFormat.MIPI_RAW10, "yuv", PixelFormat.YU12, "jpeg", PixelFormat.JPEG,
            "jpg", PixelFormat.JPEG, "dng", PixelFormat.RAW16));

    /** Returns the picture that an element of "outputs" describes; null if the description is invalid. */
    static SuiteOutput of(Json output) {
        String name = output.string("format", "");
        int width = output.integer("width", 1, Limits.FILE_SIDE, 0);
        int height = output.integer("height", 1, Limits.FILE_SIDE, 0);
        ImageFileKind kind = ImageFileKind.of(Path.of("a." + name.replaceAll("\\W", "")));
        return FORMATS.containsKey(name) && width > 0 && height > 0
                ? new SuiteOutput(name, FORMATS.get(name), kind, width, height) : null;
    }

    /** Whether the picture has no header and this many bytes. */
    boolean isOfSize(long bytes) {
        long size = 0;
        for (int plane : format.planeSizes(format.tightStride(width), height, 0)) {
            size += plane;
        }
        return kind == ImageFileKind.BYTES && size == bytes;
    }
}
