package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/**
 * Crops an image of a recording: its bytes and its description. Rows and planes keep their trailing padding,
 * to preserve the memory layout.
 */
final class ImageCrop {
    private final ImageLayout mImage;
    private final PixelFormat mFormat;
    private final CropArea mArea;
    private final List<Plane> mPlanes = new ArrayList<>();
    private ImageLayout mCropped;

    // The rows of one plane in memory. U and V of a planar format are two planes here, but one plane in the
    // image's description. `at` is an offset in the original memory, `newAt` in the cropped memory.
    private record Plane(int at, int newAt, int stride, int newStride, int newRows, int firstByte,
            int firstRow, int bytes) {
    }

    private ImageCrop(ImageLayout image, CropArea area) {
        mImage = image;
        mFormat = PixelFormat.named(image.format());
        mArea = area;
    }

    /**
     * Plans the crop. Returns null for a format that can't be cropped. Throws IllegalArgumentException, whose
     * message contains `name`, if the image is smaller than the area or its description is invalid.
     */
    static ImageCrop of(ImageLayout image, CropArea area, String name) {
        ImageCrop crop = new ImageCrop(image, area.in(image.width(), image.height(), name));
        if (crop.mFormat == null || crop.mFormat == PixelFormat.JPEG) {
            return null;
        }
        crop.plan(name);
        return crop;
    }

    private void plan(String name) {
        int[] strides = mImage.rowStrides() == null ? new int[0] : mImage.rowStrides().clone();
        int[] sizes = mImage.planeSizes() == null ? new int[0] : mImage.planeSizes().clone();
        int row = mFormat.tightStride(mImage.width());
        if (strides.length == 0 || strides[0] < row) {
            throw new IllegalArgumentException("--crop: " + name + " has rows of "
                    + (strides.length == 0 ? "unknown size" : strides[0] + " bytes; its width needs " + row));
        }
        int newRow = mFormat.tightStride(mArea.width());
        int end = 0;
        int newEnd = 0;
        // Each iteration handles a plane of the description; the second plane has all chroma.
        for (int index = 0; index < (mFormat.isYuv() ? 2 : 1); ++index) {
            int planes = index > 0 && mFormat.isPlanar() ? 2 : 1;
            boolean hasStride = index < strides.length && strides[index] > 0;
            int stride = hasStride ? strides[index] : mImage.rowStrides()[0] / planes;
            int newStride = stride - (row - newRow) / planes;
            int start = end;
            int newStart = newEnd;
            for (int i = 0; i < planes; ++i) {
                mPlanes.add(new Plane(end, newEnd, stride, newStride, mArea.height() / (1 + index),
                        mFormat.tightStride(mArea.x()) / planes, mArea.y() / (1 + index), newRow / planes));
                end += stride * (mImage.height() / (1 + index));
                newEnd += newStride * (mArea.height() / (1 + index));
            }
            // A plane may lack the padding of its last row, or end with rows of padding.
            boolean hasSize = hasSize(sizes, index);
            if (hasSize) {
                newEnd += sizes[index] - (end - start);
                end = start + sizes[index];
            }
            if (hasStride) {
                strides[index] = newStride;
            }
            if (hasSize || index == 0 && sizes.length > 0) {
                sizes[index] = newEnd - newStart;
            }
        }
        int newSize = newEnd + Math.max(0, mImage.size() - end);
        checkMemory(name, sizes, newSize);
        describe(strides, sizes, newSize);
    }

    // Whether a plane's size is plausible: the first of several planes can't occupy all the memory.
    private boolean hasSize(int[] sizes, int index) {
        int most = index > 0 ? Integer.MAX_VALUE : mFormat.isYuv() ? mImage.size() - 1 : mImage.size();
        return index < sizes.length && sizes[index] > 0 && sizes[index] <= most;
    }

    // Throws if the cropped rows overlap, or if a cropped plane has a negative size because its original size
    // is too small. Checks rows and offsets against the memory only if the image has a file. The last row
    // needs no padding.
    private void checkMemory(String name, int[] newSizes, int newSize) {
        boolean isLess = Arrays.stream(newSizes).anyMatch(size -> size < 0);
        for (Plane plane : mPlanes) {
            long last = plane.at() + (long) plane.stride() * (plane.firstRow() + plane.newRows() - 1)
                    + plane.firstByte() + plane.bytes();
            long newLast = plane.newAt() + (long) plane.newStride() * (plane.newRows() - 1) + plane.bytes();
            boolean hasFile = mImage.file() != null;
            if (hasFile && last > mImage.size() || plane.newStride() < plane.bytes()) {
                throw new IllegalArgumentException(
                        "--crop: " + name + " has " + mImage.size() + " bytes, fewer than its rows need");
            }
            if (isLess || hasFile && (plane.at() < 0 || plane.newAt() < 0 || newLast > newSize)) {
                throw new IllegalArgumentException("--crop: " + name + " has planes of "
                        + Arrays.toString(mImage.planeSizes()) + " bytes, fewer than their rows need");
            }
        }
    }

    private void describe(int[] strides, int[] sizes, int size) {
        int[] buffer = mImage.buffer().clone();
        if (buffer.length > 0 && buffer[1] == 1) {
            buffer[0] = size;
        } else if (buffer.length > 0) {
            buffer[0] -= mImage.width() - mArea.width();
            buffer[1] -= mImage.height() - mArea.height();
        }
        mCropped = new ImageLayout(mImage.format(), mArea.width(), mArea.height(), strides,
                mImage.planeSizes() == null ? null : sizes, mImage.memory(), buffer,
                mImage.memory().equals("none") ? 0 : size, mImage.file(), mImage.kept(), mImage.frame());
    }

    /** The description of the cropped image. It still names the original's file. */
    ImageLayout image() {
        return mCropped;
    }

    /** The bytes of the cropped image; padding is 0. */
    byte[] bytes(byte[] from) {
        byte[] to = new byte[mCropped.size()];
        for (Plane plane : mPlanes) {
            for (int row = 0; row < plane.newRows(); ++row) {
                int at = plane.at() + (plane.firstRow() + row) * plane.stride() + plane.firstByte();
                System.arraycopy(from, at, to, plane.newAt() + row * plane.newStride(), plane.bytes());
            }
        }
        return to;
    }
}
