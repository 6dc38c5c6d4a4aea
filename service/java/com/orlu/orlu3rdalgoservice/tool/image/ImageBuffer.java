package com.orlu.orlu3rdalgoservice.tool.image;

import android.hardware.HardwareBuffer;
import android.os.SharedMemory;
import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.Arrays;

/** One image's memory and its description for the native side. close() frees the memory. */
public final class ImageBuffer implements AutoCloseable {
    private static final int JPEG_HEADROOM = 1 << 16;

    private final ImagePlan mPlan;
    private final VImageIPC mDescriptor = new VImageIPC();
    private final ByteBuffer mBytes;

    private ImageBuffer(ImagePlan plan, int jpegRoom) throws ErrnoException {
        mPlan = plan;
        mDescriptor.mFormat = plan.name();
        mDescriptor.mWidth = plan.width();
        mDescriptor.mHeight = plan.height();
        mDescriptor.mRowStrides = plan.strides();
        mDescriptor.mPlaneSizes = plan.planeSizes(Math.max(jpegRoom, plan.capacity()));
        int size = 0;
        for (int planeSize : mDescriptor.mPlaneSizes) {
            size += planeSize;
        }
        mBytes = allocate(Math.max(1, Math.max(size, plan.capacity()))).order(ByteOrder.LITTLE_ENDIAN);
    }

    private ImageBuffer(ImagePlan plan, ImageLayout layout) throws ErrnoException, MistakeException {
        mPlan = plan;
        mDescriptor.mFormat = layout.format();
        mDescriptor.mWidth = layout.width();
        mDescriptor.mHeight = layout.height();
        mDescriptor.mRowStrides = layout.rowStrides();
        mDescriptor.mPlaneSizes = layout.planeSizes();
        mBytes = memory(layout).order(ByteOrder.LITTLE_ENDIAN);
    }

    private ByteBuffer memory(ImageLayout layout) throws ErrnoException, MistakeException {
        switch (layout.memory()) {
            case "hardware" -> {
                try {
                    mDescriptor.mImageDataHwbuff = recordedBuffer(layout);
                } catch (IllegalArgumentException e) {
                    throw mPlan.place().error("buffer", e.getMessage());
                }
                return mDescriptor.mImageDataHwbuff.mapPixels();
            }
            case "shared" -> {
                mDescriptor.mImageDataShmem = SharedMemory.create("orlu-image", Math.max(1, layout.size()));
                return mDescriptor.mImageDataShmem.mapReadWrite();
            }
            default -> {
                return ByteBuffer.allocate(0);
            }
        }
    }

    // Creates a buffer like the phone's. If the phone's buffer has padded rows or an unknown format, creates
    // a BLOB buffer of the same size instead.
    private static HardwareBuffer recordedBuffer(ImageLayout layout) {
        long width = layout.buffer()[0];
        long height = layout.buffer()[1];
        int format = layout.buffer()[2];
        long tight = switch (format) {
            case HardwareBuffer.RGBA_8888 -> width * height * 4;
            case HardwareBuffer.RAW16 -> width * height * 2;
            case HardwareBuffer.YCBCR_420_888 -> width * (height + (height + 1) / 2);
            case HardwareBuffer.BLOB -> width;
            default -> 0;
        };
        long size = layout.size();
        if (tight == 0 && layout.planeSizes() != null) {
            size = Math.max(size, Arrays.stream(layout.planeSizes()).asLongStream().sum());
        }
        return size > Math.max(tight, 0) && size <= Integer.MAX_VALUE
                ? HardwareBuffer.create((int) size, 1, HardwareBuffer.BLOB, 1, usage())
                : HardwareBuffer.create((int) width, (int) height, format, 1, usage());
    }

    /** Allocates memory for an image as a recorder described it. Copies any recorded bytes into it. */
    public static ImageBuffer recorded(ImagePlan plan) throws ErrnoException, MistakeException {
        byte[] bytes = plan.layout().bytes();
        ImageBuffer image = new ImageBuffer(plan, plan.layout());
        if (bytes != null) {
            image.mBytes.put(0, bytes, 0, Math.min(bytes.length, image.mBytes.capacity()));
        }
        return image;
    }

    /** Allocates memory for an input and fills it with the picture. */
    public static ImageBuffer holding(Picture picture, ImagePlan plan) throws ErrnoException {
        if (plan.format() == PixelFormat.JPEG) {
            byte[] jpeg = PixelWriter.encodeJpeg(picture);
            ImageBuffer image = new ImageBuffer(plan, jpeg.length);
            image.mBytes.put(0, jpeg);
            return image;
        }
        ImageBuffer image = new ImageBuffer(plan, 0);
        PixelWriter.write(picture, plan, image.mBytes);
        return image;
    }

    /** Allocates memory for an input and fills it with the pixels of its file. */
    public static ImageBuffer ofFile(ImagePlan plan) throws ErrnoException, MistakeException {
        ImageBuffer image = new ImageBuffer(plan, 0);
        try {
            new FilePixels(plan).fill(image.mBytes);
        } catch (MistakeException e) {
            image.close();
            throw e;
        }
        return image;
    }

    /**
     * Allocates zeroed memory for an output. For a JPEG without a planned or recorded size, allocates 1.5
     * bytes per pixel plus a reserve.
     */
    public static ImageBuffer empty(ImagePlan plan) throws ErrnoException, MistakeException {
        if (plan.layout() != null) {
            return new ImageBuffer(plan, plan.layout());
        }
        int usual = plan.width() * plan.height() * 3 / 2 + JPEG_HEADROOM;
        return new ImageBuffer(plan, plan.capacity() > 0 ? plan.capacity() : usual);
    }

    private ByteBuffer allocate(int size) throws ErrnoException {
        if (mPlan.hardware()) {
            mDescriptor.mImageDataHwbuff = hardwareBuffer(size);
            return mDescriptor.mImageDataHwbuff.mapPixels();
        }
        mDescriptor.mImageDataShmem = SharedMemory.create("orlu-image", size);
        return mDescriptor.mImageDataShmem.mapReadWrite();
    }

    // The buffer's width includes the padding. The native side reads the stride from mDescriptor.
    private HardwareBuffer hardwareBuffer(int size) {
        int stride = mPlan.strideBytes();
        int tight = mPlan.format().planeSizes(stride, mPlan.height(), size)[0];
        boolean plain = size == tight || mPlan.format().isYuv() && size == stride * mPlan.height() * 3 / 2;
        return switch (plain ? mPlan.format() : PixelFormat.JPEG) {
            case RAW16, RAW_SENSOR -> buffer(stride / 2, HardwareBuffer.RAW16);
            case R8G8B8A8 -> buffer(stride / 4, HardwareBuffer.RGBA_8888);
            case JPEG, MIPI_RAW10 -> HardwareBuffer.create(size, 1, HardwareBuffer.BLOB, 1, usage());
            default -> buffer(stride, HardwareBuffer.YCBCR_420_888);
        };
    }

    private HardwareBuffer buffer(int width, int format) {
        return HardwareBuffer.create(width, mPlan.height(), format, 1, usage());
    }

    private static long usage() {
        return HardwareBuffer.USAGE_CPU_READ_OFTEN | HardwareBuffer.USAGE_CPU_WRITE_OFTEN;
    }

    public ImagePlan plan() {
        return mPlan;
    }

    public VImageIPC descriptor() {
        return mDescriptor;
    }

    /** The image's whole memory; valid until the image is closed. */
    public ByteBuffer bytes() {
        return mBytes;
    }

    @Override
    public void close() {
        if (mBytes.isDirect()) {
            SharedMemory.unmap(mBytes);
        }
        if (mDescriptor.mImageDataHwbuff != null) {
            mDescriptor.mImageDataHwbuff.close();
        } else if (mDescriptor.mImageDataShmem != null) {
            mDescriptor.mImageDataShmem.close();
        }
    }
}
