package com.orlu.orlu3rdalgoservice.tool.imagefile;

import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.awt.image.BufferedImage;
import java.awt.image.DataBuffer;
import java.awt.image.Raster;
import java.awt.image.SampleModel;
import java.io.ByteArrayInputStream;
import java.io.IOException;
import java.nio.file.Path;
import java.util.Iterator;

import javax.imageio.ImageIO;
import javax.imageio.ImageReader;
import javax.imageio.ImageTypeSpecifier;
import javax.imageio.plugins.tiff.BaselineTIFFTagSet;
import javax.imageio.plugins.tiff.TIFFDirectory;
import javax.imageio.plugins.tiff.TIFFField;
import javax.imageio.stream.ImageInputStream;

/** A picture file, such as PNG, TIFF or JPEG. Methods throw an IOException if a file can't be read. */
public final class PictureFile {
    private static final int MOST_PIXELS = 1 << 27;
    private static final long MOST_BYTES = 1 << 29;

    private final Path mPath;
    private final int mWidth;
    private final int mHeight;

    private PictureFile(Path path, int width, int height) {
        mPath = path;
        mWidth = width;
        mHeight = height;
    }

    private interface Use<T> {
        T of(ImageReader reader) throws IOException;
    }

    /** Reads only the header. Throws an IOException if the picture would take too much memory. */
    public static PictureFile open(Path path) throws IOException {
        return with(path.toFile(), reader -> {
            checkMemory(reader);
            return new PictureFile(path, reader.getWidth(0), reader.getHeight(0));
        });
    }

    /** Decodes the bytes of a file. Throws an IOException if the picture would take too much memory. */
    public static BufferedImage decode(byte[] bytes) throws IOException {
        return with(new ByteArrayInputStream(bytes), reader -> {
            checkMemory(reader);
            return reader.read(0);
        });
    }

    private static void checkMemory(ImageReader reader) throws IOException {
        long pixels = (long) reader.getWidth(0) * reader.getHeight(0);
        if (pixels > MOST_PIXELS) {
            throw new IOException("expected at most " + MOST_PIXELS + " pixels, found " + reader.getWidth(0)
                    + "x" + reader.getHeight(0));
        }
        if (reader.getFormatName().equalsIgnoreCase("tif")) {
            checkSampleBits(TIFFDirectory.createFromMetadata(reader.getImageMetadata(0)));
        }
        Iterator<ImageTypeSpecifier> types = reader.getImageTypes(0);
        if (types.hasNext()) {
            SampleModel samples = types.next().getSampleModel();
            long bytes = pixels * samples.getNumBands()
                    * DataBuffer.getDataTypeSize(samples.getDataType()) / Byte.SIZE;
            if (bytes > MOST_BYTES) {
                throw new IOException("expected at most " + MOST_BYTES + " decoded bytes, found " + bytes);
            }
        }
    }

    // Accepts 1 to 16, 32 and 64 bits per sample. For other sizes, the decoder allocates a table with an
    // entry for each possible sample value.
    private static void checkSampleBits(TIFFDirectory directory) throws IOException {
        TIFFField sizes = directory.getTIFFField(BaselineTIFFTagSet.TAG_BITS_PER_SAMPLE);
        for (int i = 0; sizes != null && i < sizes.getCount(); ++i) {
            int bits = sizes.getAsInt(i);
            if (bits > Short.SIZE && bits != Integer.SIZE && bits != Long.SIZE) {
                throw new IOException("expected 1 to 16, 32 or 64 bits per sample, found " + bits);
            }
        }
    }

    public int width() {
        return mWidth;
    }

    public int height() {
        return mHeight;
    }

    /** Decodes the picture. Keeps the file's colours and bit depth. */
    public BufferedImage decode() throws IOException {
        return with(mPath.toFile(), reader -> reader.read(0));
    }

    /** Passes all samples to `to`. Throws an IOException unless the picture has one sample per pixel. */
    public void readSamples(SampleSink to) throws IOException {
        Raster raster = decode().getRaster();
        if (raster.getNumBands() != 1) {
            throw new IOException("expected one sample per pixel for a raw format, found "
                    + raster.getNumBands());
        }
        for (int y = 0; y < mHeight; ++y) {
            for (int x = 0; x < mWidth; ++x) {
                to.put(x, y, raster.getSample(x, y, 0));
            }
        }
    }

    // `source` is a File or an InputStream.
    private static <T> T with(Object source, Use<T> use) throws IOException {
        try (ImageInputStream stream = ImageIO.createImageInputStream(source)) {
            Iterator<ImageReader> readers = ImageIO.getImageReaders(stream);
            if (!readers.hasNext()) {
                throw new IOException("not a picture of a known format");
            }
            ImageReader reader = readers.next();
            try {
                reader.setInput(stream, true, true);
                return use.of(reader);
            } finally {
                reader.dispose();
            }
        } catch (RuntimeException e) {
            // The decoders throw RuntimeExceptions for damaged files.
            throw new IOException("damaged: " + Printable.message(e), e);
        }
    }
}
