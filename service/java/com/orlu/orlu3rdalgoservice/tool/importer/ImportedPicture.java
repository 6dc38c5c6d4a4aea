package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.imagefile.DngFile;
import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;
import com.orlu.orlu3rdalgoservice.tool.imagefile.PictureFile;
import com.orlu.orlu3rdalgoservice.tool.request.Limits;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.io.IOException;
import java.nio.file.Path;
import java.util.Map;

/**
 * An image file that becomes an input of a request.
 *
 * @param size the width and height of a file without a header; null for a file with a header
 */
record ImportedPicture(Path file, PixelFormat format, SuiteOutput size) {
    /** Reads the header of a file. Throws an IOException with the reason if the file can't be an input. */
    static ImportedPicture of(Path file, ImageFileKind kind) throws IOException {
        if (kind == ImageFileKind.DNG) {
            DngFile.open(file);
            return new ImportedPicture(file, PixelFormat.RAW16, null);
        }
        PictureFile picture = PictureFile.open(file);
        if (Math.max(picture.width(), picture.height()) > Limits.FILE_SIDE) {
            throw new IOException("expected sides of at most " + Limits.FILE_SIDE + " pixels, found "
                    + picture.width() + "x" + picture.height());
        }
        boolean isEven = picture.width() % 2 == 0 && picture.height() % 2 == 0;
        return new ImportedPicture(file, isEven ? PixelFormat.NV21 : PixelFormat.R8G8B8A8, null);
    }

    /** Returns the input's description for a request file. `folder` is the request file's folder. */
    Map<String, Object> input(Path folder, int frame) {
        Map<String, Object> input =
                JsonWriter.object("file", relative(folder, file), "format", format.name());
        if (size != null) {
            input.put("width", size.width());
            input.put("height", size.height());
        }
        input.put("frame", frame);
        return input;
    }

    static String relative(Path folder, Path file) {
        return folder.toAbsolutePath().normalize().relativize(file.toAbsolutePath().normalize()).toString();
    }
}
