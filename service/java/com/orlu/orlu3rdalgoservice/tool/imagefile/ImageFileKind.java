package com.orlu.orlu3rdalgoservice.tool.imagefile;

import java.nio.file.Path;
import java.util.Locale;

/** The kind of an image file. Depends only on the extension, because raw bytes may look like a header. */
public enum ImageFileKind {
    /** Pixels as in memory, without a header. */
    BYTES,
    /** Sensor samples in a TIFF structure. */
    DNG,
    /** Pictures that the Java platform decodes: JPEG, PNG and TIFF. */
    JPEG,
    PNG,
    TIFF;

    /** Returns the kind of a file; BYTES for an unknown extension. */
    public static ImageFileKind of(Path file) {
        String name = String.valueOf(file.getFileName()).toLowerCase(Locale.ROOT);
        return switch (name.substring(name.lastIndexOf('.') + 1)) {
            case "dng" -> DNG;
            case "jpg", "jpeg" -> JPEG;
            case "png" -> PNG;
            case "tif", "tiff" -> TIFF;
            default -> BYTES;
        };
    }
}
