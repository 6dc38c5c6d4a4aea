package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/**
 * Crops an image of a recording: its bytes and its description. Rows and planes keep their trailing padding,
 * so that the memory layout stays the same.
 */
final class ImageCrop {
    private final ImageLayout mImage;
    private ImageLayout mCropped;
    private final PixelFormat mFormat;
    private final int mWidth;
    private final int mHeight;
    private final CropArea mArea;
    private final List<Plane> mPlanes = new ArrayList<>();
    private final int mSize;

    // Rows of a plane, or of one of two chroma planes, at an offset in the memory.
    private record Plane(int at, int newAt, int stride, int newStride, int rows, int newRows, int firstByte,
            int firstRow, int bytes) {
        int end() {
            return at + stride * rows;
        }
    }

    private ImageCrop(ImageLayout image, CropArea area) {
        mImage = image;
        mFormat = PixelFormat.named(image.format());
        mWidth = image.width();
        mHeight = image.height();
        mSize = image.size();
        mArea = area;
    }

    /**
     * Plans the crop. Throws IllegalArgumentException, with this name, if the image is smaller than the area
     * or its description is invalid. Returns null for a format that can't be cropped.
     */
    static ImageCrop of(ImageLayout image, CropArea area, String name) {
        ImageCrop crop = new ImageCrop(image, area.in(image.width(), image.height(), name));
        if (crop.mFormat == null || crop.mFormat == PixelFormat.JPEG) {
            return null;
        }
        crop.plan(image, name);
        return crop;
    }

    private void plan(ImageLayout image, String name) {
        int[] strides = image.rowStrides();
        int[] given = image.planeSizes();
        int[] sizes = given == null ? new int[0] : given;
        if (strides == null || strides.length == 0 || strides[0] < mFormat.tightStride(mWidth)) {
            throw new IllegalArgumentException("--crop: " + name + " has rows of "
                    + (strides == null || strides.length == 0 ? "unknown size" : strides[0] + " bytes"));
        }
        int newStride = cut(strides[0], 0);
        int end = addPlane(0, 0, strides[0], newStride, 1);
        int newEnd = newStride * mArea.height();
        int[] newSizes = sizes.clone();
        int[] newStrides = strides.clone();
        newStrides[0] = newStride;
        // The first plane may end with the last row's pixels, or have padding rows. Without other planes, it
        // takes all the memory.
        boolean isPlane = sizes.length > 0 && sizes[0] > 0
                && sizes[0] <= (mFormat.isYuv() ? mSize - 1 : mSize);
        if (isPlane) {
            newEnd += sizes[0] - end;
            end = sizes[0];
        }
        if (newSizes.length > 0) {
            newSizes[0] = newEnd;
        }
        if (mFormat.isYuv()) {
            int planes = mFormat.isPlanar() ? 2 : 1;
            int stride = strides.length > 1 && strides[1] > 0 ? strides[1] : strides[0] / planes;
            int newChroma = cut(stride, 1);
            int chroma = end;
            for (int i = 0; i < planes; ++i) {
                end = addPlane(end, newEnd, stride, newChroma, 2);
                newEnd += newChroma * mArea.height() / 2;
            }
            if (strides.length > 1 && strides[1] > 0) {
                newStrides[1] = newChroma;
            }
            if (newSizes.length > 1 && sizes[1] > 0) {
                newEnd += sizes[1] - (end - chroma);
                newSizes[1] = sizes[1] - (end - chroma) + newChroma * mArea.height() / 2 * planes;
                end = chroma + sizes[1];
            }
        }
        int newSize = newEnd + Math.max(0, mSize - end);
        checkMemory(name, newSizes, newSize);
        describe(newStrides, newSizes, newSize);
    }

    private int cut(int stride, int plane) {
        int divisor = plane > 0 && mFormat.isPlanar() ? 2 : 1;
        return stride - (mFormat.tightStride(mWidth) - mFormat.tightStride(mArea.width())) / divisor;
    }

    // Returns the end of the plane.
    private int addPlane(int at, int newAt, int stride, int newStride, int subsampling) {
        int divisor = subsampling > 1 && mFormat.isPlanar() ? 2 : 1;
        mPlanes.add(new Plane(at, newAt, stride, newStride, mHeight / subsampling,
                mArea.height() / subsampling, mFormat.tightStride(mArea.x()) / divisor,
                mArea.y() / subsampling, mFormat.tightStride(mArea.width()) / divisor));
        return mPlanes.get(mPlanes.size() - 1).end();
    }

    // The last row may lack its padding, and plane sizes may be less than the rows'.
    private void checkMemory(String name, int[] newSizes, int newSize) {
        boolean isLess = Arrays.stream(newSizes).anyMatch(size -> size < 0);
        for (Plane plane : mPlanes) {
            long last = plane.at() + (long) plane.stride() * (plane.firstRow() + plane.newRows() - 1)
                    + plane.firstByte() + plane.bytes();
            long newLast = plane.newAt() + (long) plane.newStride() * (plane.newRows() - 1) + plane.bytes();
            boolean hasFile = mImage.file() != null;
            if (hasFile && last > mSize || plane.newStride() < plane.bytes()) {
                throw new IllegalArgumentException(
                        "--crop: " + name + " has " + mSize + " bytes, fewer than its rows");
            }
            if (isLess || hasFile && (plane.at() < 0 || plane.newAt() < 0 || newLast > newSize)) {
                throw new IllegalArgumentException("--crop: " + name + " has planes of "
                        + Arrays.toString(mImage.planeSizes()) + " bytes, fewer than their rows");
            }
        }
    }

    private void describe(int[] strides, int[] sizes, int size) {
        int[] buffer = mImage.buffer().clone();
        if (buffer.length > 0 && buffer[1] == 1) {
            buffer[0] = size;
        } else if (buffer.length > 0) {
            buffer[0] -= mWidth - mArea.width();
            buffer[1] -= mHeight - mArea.height();
        }
        mCropped = new ImageLayout(mImage.format(), mArea.width(), mArea.height(), strides,
                mImage.planeSizes() == null ? null : sizes, mImage.memory(), buffer,
                mImage.memory().equals("none") ? 0 : size, mImage.file(), mImage.kept(), mImage.frame());
    }

    /** The description of the cropped image; its file is still the original's. */
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
