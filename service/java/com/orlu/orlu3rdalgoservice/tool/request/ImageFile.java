package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;

import java.nio.file.Path;
import java.util.List;

/**
 * A file with the pixels of an input.
 *
 * @param kind   BYTES if the file's bytes are used unchanged
 * @param planes the planes of a file of kind BYTES; empty for other kinds
 */
public record ImageFile(Path path, ImageFileKind kind, List<Plane> planes) {
    /**
     * One plane of pixels. All numbers are in bytes.
     *
     * @param offset offset of the plane in the file
     * @param stride row stride, in the file and in memory
     * @param size   size of the plane, in the file and in memory
     */
    public record Plane(long offset, int stride, int size) {
    }
}
