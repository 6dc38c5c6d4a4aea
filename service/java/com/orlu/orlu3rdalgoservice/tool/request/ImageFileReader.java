package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.imagefile.DngFile;
import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;
import com.orlu.orlu3rdalgoservice.tool.imagefile.PictureFile;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.InvalidPathException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/** Reads an input's description of its file from a request file, and compares it with the file. */
final class ImageFileReader {
    private static final int LARGEST_PLANE = 1 << 29;
    private static final long LARGEST_OFFSET = 1L << 48;

    private final Json mMembers;
    private final Json mField;
    private final PixelFormat mFormat;
    private final Path mPath;
    private final ImageFileKind mKind;
    private int mWidth;
    private int mHeight;
    private int mBits = ImagePlanReader.USUAL_BITS;

    /** Reads the file's header. `field` is the file's name, `members` the description of the input. */
    ImageFileReader(Path requestFile, Json field, Json members, PixelFormat format)
            throws MistakeException {
        mMembers = members;
        mField = field;
        mFormat = format;
        mPath = existing(requestFile, field);
        ImageFileKind kind = ImageFileKind.of(mPath);
        // An input in JPEG format uses the bytes of a JPEG file unchanged.
        mKind = kind == ImageFileKind.JPEG && format == PixelFormat.JPEG ? ImageFileKind.BYTES : kind;
        readSize(kind);
    }

    /**
     * Returns the file that a field names. A relative name starts at the request file's folder. Throws if the
     * file can't be read.
     */
    static Path existing(Path requestFile, Json field) throws MistakeException {
        try {
            Path path = requestFile.resolveSibling(field.string());
            if (Files.isRegularFile(path)) {
                if (Files.isReadable(path)) {
                    warnOutside(field);
                    return path;
                }
                throw field.error("can't be read: " + path);
            }
            if (Files.exists(path)) {
                throw field.error("expected a regular file, found another kind: " + path);
            }
        } catch (InvalidPathException e) {
            // An invalid name is reported like the name of a missing file.
        }
        throw field.error("no such file: " + Json.cut(field.string()));
    }

    // Warns because a request file from someone else could expose the user's files. Absolute paths cause no
    // warning: they are conspicuous enough.
    private static void warnOutside(Json field) throws MistakeException {
        Path name = Path.of(field.string()).normalize();
        if (!name.isAbsolute() && name.startsWith("..")) {
            field.warn("outside the request file's folder: " + Json.cut(field.string()));
        }
    }

    int width() {
        return mWidth;
    }

    int height() {
        return mHeight;
    }

    /** The default bit depth of raw samples. */
    int bits() {
        return mBits;
    }

    private void readSize(ImageFileKind kind) throws MistakeException {
        try {
            if (kind == ImageFileKind.BYTES) {
                mWidth = mMembers.require("width").integer(1, Limits.FILE_SIDE);
                mHeight = mMembers.require("height").integer(1, Limits.FILE_SIDE);
            } else if (kind == ImageFileKind.DNG) {
                DngFile dng = DngFile.open(mPath);
                setSize(dng.width(), dng.height());
                mBits = dng.bits();
            } else {
                PictureFile picture = PictureFile.open(mPath);
                setSize(picture.width(), picture.height());
                mBits = Short.SIZE;
            }
        } catch (IOException e) {
            throw mField.error(mPath + ": " + Printable.message(e));
        }
        checkFormat(kind);
    }

    private void setSize(int width, int height) throws MistakeException {
        mWidth = agreeing("width", width);
        mHeight = agreeing("height", height);
    }

    // Returns `inFile`, the width or height in the file's header. Throws if the request file has a different
    // value.
    private int agreeing(String member, int inFile) throws MistakeException {
        if (inFile > Limits.FILE_SIDE) {
            throw mField.error(
                    mPath + ": " + member + ": expected at most " + Limits.FILE_SIDE + ", found " + inFile);
        }
        if (mMembers.has(member) && mMembers.get(member).integer(0, Limits.FILE_SIDE) != inFile) {
            throw mMembers.get(member).needs(inFile + " as in the header of " + mPath);
        }
        return inFile;
    }

    private void checkFormat(ImageFileKind kind) throws MistakeException {
        if (kind == ImageFileKind.DNG && !mFormat.isRaw()) {
            throw mField.error("expected a raw format for a DNG file, found " + mFormat);
        }
        if (mFormat == PixelFormat.JPEG && mKind != ImageFileKind.BYTES) {
            throw mField.error("expected a JPEG file for the format JPEG");
        }
        if (kind == ImageFileKind.JPEG && mFormat.isRaw()) {
            throw mField.error("a JPEG file has no raw samples for " + mFormat);
        }
        if (mFormat.isYuv() && (mWidth % 2 != 0 || mHeight % 2 != 0)) {
            throw mField.error("expected even sides for " + mFormat + ", found " + mWidth + "x" + mHeight);
        }
        if (kind != ImageFileKind.BYTES) {
            for (String member : List.of("offset", "planes")) {
                if (mMembers.has(member)) {
                    mField.mistakes().add(
                            mMembers.get(member).error("unexpected for a file with its own header"));
                }
            }
        }
    }

    /** Returns the file with its planes. `stride` is the first plane's default stride, in bytes. */
    ImageFile file(int stride) throws MistakeException {
        if (mKind != ImageFileKind.BYTES) {
            return new ImageFile(mPath, mKind, List.of());
        }
        long size = size();
        long offset = mMembers.integer("offset", 0L, LARGEST_OFFSET, 0L);
        if (mFormat == PixelFormat.JPEG) {
            return jpeg(offset, size, stride);
        }
        List<Json> own = mMembers.has("planes") ? mMembers.get("planes").list() : null;
        int[] strides = mFormat.strides(stride);
        if (own != null && own.size() != strides.length) {
            throw mMembers.get("planes").error("expected " + strides.length + " planes for " + mFormat
                    + ", found " + own.size());
        }
        List<ImageFile.Plane> planes = new ArrayList<>();
        for (int i = 0; i < strides.length; ++i) {
            Json field = own == null ? mField : own.get(i);
            Json members =
                    own == null ? Json.none() : field.allowing("offset", "stride", "size");
            ImageFile.Plane plane = plane(members, i, offset, strides[i]);
            int index = i;
            mField.mistakes().attempt(() -> checkInFile(field, plane, index, size));
            planes.add(plane);
            offset = plane.offset() + plane.size();
        }
        return new ImageFile(mPath, mKind, planes);
    }

    private ImageFile jpeg(long offset, long size, int stride) throws MistakeException {
        if (offset >= size || size - offset > LARGEST_PLANE) {
            throw mField.error(mPath + ": expected from 1 to " + LARGEST_PLANE + " bytes of a JPEG at "
                    + offset + ", found " + Math.max(0, size - offset));
        }
        return new ImageFile(
                mPath, mKind, List.of(new ImageFile.Plane(offset, stride, (int) (size - offset))));
    }

    // The last row of a plane needs no padding.
    private ImageFile.Plane plane(Json members, int index, long offset, int usualStride) {
        int rows = rows(index);
        int row = mFormat.rowBytes(index, mWidth);
        int stride = members.integer("stride", row, LARGEST_PLANE / rows, usualStride);
        int least = stride * (rows - 1) + row;
        int size = members.integer("size", least, LARGEST_PLANE, stride * rows);
        return new ImageFile.Plane(members.integer("offset", 0L, LARGEST_OFFSET, offset), stride, size);
    }

    // The two chroma planes of a planar format count as one plane, whose rows have half the image's width. So
    // this plane has as many rows as the luma plane.
    private int rows(int index) {
        return index == 0 || mFormat.isPlanar() ? mHeight : mHeight / 2;
    }

    private void checkInFile(Json field, ImageFile.Plane plane, int index, long size)
            throws MistakeException {
        long end = plane.offset() + plane.size();
        if (end > size) {
            throw field.error(mPath + ": plane " + index + ": expected " + end + " bytes (" + plane.size()
                    + " at offset " + plane.offset() + "), found " + size);
        }
    }

    private long size() throws MistakeException {
        try {
            return Files.size(mPath);
        } catch (IOException e) {
            throw mField.error(mPath + ": can't be read");
        }
    }
}
