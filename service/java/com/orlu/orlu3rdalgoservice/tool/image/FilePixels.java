package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.imagefile.DngFile;
import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;
import com.orlu.orlu3rdalgoservice.tool.imagefile.PictureFile;
import com.orlu.orlu3rdalgoservice.tool.imagefile.SampleSink;
import com.orlu.orlu3rdalgoservice.tool.request.ImageFile;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.EOFException;
import java.io.IOException;
import java.nio.ByteBuffer;
import java.nio.channels.FileChannel;

/** Reads the pixels of an input from its file. */
public final class FilePixels {
    private final ImagePlan mPlan;
    private final ImageFile mFile;
    private int mLargestSample;

    /** The input must have a file. */
    public FilePixels(ImagePlan plan) {
        mPlan = plan;
        mFile = plan.file();
    }

    /** Decodes an encoded file and discards the pixels, to find errors. */
    public void check() throws MistakeException {
        if (mFile.kind() != ImageFileKind.BYTES) {
            fill(null);
        }
    }

    /**
     * Writes the pixels into the image's memory, but nothing outside the described planes. If `to` is null,
     * only decodes the file, which must be an encoded one.
     */
    void fill(ByteBuffer to) throws MistakeException {
        try {
            if (mFile.kind() == ImageFileKind.BYTES) {
                copyPlanes(to);
            } else if (mPlan.format().isRaw()) {
                readSamples(to == null ? (x, y, sample) -> { } : PixelWriter.samples(mPlan, to));
            } else {
                PixelRows picture = new ImageRows(PictureFile.open(mFile.path()).decode());
                if (to != null) {
                    PixelWriter.write(Picture.of(picture), mPlan, to);
                }
            }
        } catch (IOException e) {
            throw mPlan.place().error("file", mFile.path() + ": " + Printable.message(e));
        }
    }

    // In memory, the planes are contiguous.
    private void copyPlanes(ByteBuffer to) throws IOException {
        try (FileChannel channel = FileChannel.open(mFile.path())) {
            int at = 0;
            for (ImageFile.Plane plane : mFile.planes()) {
                ByteBuffer part = to.slice(at, plane.size());
                channel.position(plane.offset());
                while (part.hasRemaining()) {
                    if (channel.read(part) < 0) {
                        throw new EOFException("the file shrank while it was read");
                    }
                }
                at += plane.size();
            }
        }
    }

    private void readSamples(SampleSink to) throws IOException {
        SampleSink measured = (x, y, sample) -> {
            mLargestSample = Math.max(mLargestSample, sample);
            to.put(x, y, sample);
        };
        if (mFile.kind() == ImageFileKind.DNG) {
            DngFile.open(mFile.path()).readSamples(measured);
        } else {
            PictureFile.open(mFile.path()).readSamples(measured);
        }
        if (mLargestSample >> mPlan.bits() != 0) {
            throw new IOException("a sample is " + mLargestSample + ", too large for " + mPlan.bits()
                    + " bits (field \"bits\")");
        }
    }
}
