package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;

import java.nio.file.Path;
import java.util.List;

/**
 * The file that an input's pixels come from.
 *
 * @param path   where it lies
 * @param kind   BYTES when the bytes go in as they are
 * @param planes where the bytes of each plane lie; empty for other kinds
 */
public record ImageFile(Path path, ImageFileKind kind, List<Plane> planes) {
    /**
     * One plane of pixels.
     *
     * @param offset where it begins in the file, in bytes
     * @param stride bytes a row, also in memory
     * @param size   bytes in all, also in memory
     */
    public record Plane(long offset, int stride, int size) {
    }
}
