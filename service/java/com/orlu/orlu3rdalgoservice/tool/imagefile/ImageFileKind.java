package com.orlu.orlu3rdalgoservice.tool.imagefile;

import java.nio.file.Path;
import java.util.Locale;

/** How a file's pixels are found, by the end of its name: any bytes may begin as an image file does. */
public enum ImageFileKind {
    /** Pixels as they lie in memory, without a header. */
    BYTES,
    /** Samples of a sensor in a TIFF structure. */
    DNG,
    /** A picture that the platform decodes. */
    JPEG,
    PNG,
    TIFF;

    /** The kind of this file, BYTES for a name that ends in none of the others' ways. */
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
