package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;

import java.nio.file.Path;
import java.util.List;

/**
 * The file of an input's pixels.
 *
 * @param kind   BYTES if the bytes are used unchanged
 * @param planes the place of each plane's bytes; empty for other kinds
 */
public record ImageFile(Path path, ImageFileKind kind, List<Plane> planes) {
    /**
     * One plane of pixels, in bytes.
     *
     * @param offset of its start in the file
     * @param stride of a row, in the file and in memory
     * @param size   in the file and in memory
     */
    public record Plane(long offset, int stride, int size) {
    }
}
