package com.orlu.orlu3rdalgoservice.tool.compare;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.image.ImageDifference;
import com.orlu.orlu3rdalgoservice.tool.image.PixelRows;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.run.SideBySide;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** Compares outputs by description and bytes, and writes pictures of those that differ. */
public final class OutputComparison {
    // An EXIF date and time in a JPEG. The comparison ignores these bytes.
    private static final Pattern EXIF_TIME = Pattern.compile("\\d{4}:\\d\\d:\\d\\d \\d\\d:\\d\\d:\\d\\d\0");

    private final Path mPictures;
    private final String mName;

    /** Writes pictures of differing outputs to the folder `pictures` (null: none), with `name` as prefix. */
    public OutputComparison(Path pictures, String name) {
        mPictures = pictures;
        mName = name;
    }

    List<String> differences(int index, ImageLayout one, ImageLayout other, double tolerance)
            throws MistakeException, IOException {
        List<String> differences = new ArrayList<>();
        String output = "output " + index;
        for (String field : List.of("format", "width", "height", "rowStrides", "planeSizes")) {
            String left = JsonWriter.line(one.json().get(field));
            String right = JsonWriter.line(other.json().get(field));
            // Similar pictures give JPEGs of different sizes.
            boolean isFree = tolerance > 0 && isJpeg(one) && field.equals("planeSizes");
            if (!left.equals(right) && !isFree) {
                differences.add(output + " " + field + ": " + left + " / " + right);
            }
        }
        byte[] left = content(one);
        byte[] right = content(other);
        if (left == null || right == null) {
            if (left != right && (one.file() == null) != (other.file() == null)) {
                differences.add(output + " bytes: " + kept(left) + " / " + kept(right));
            }
        } else if (!Arrays.equals(left, right)) {
            String pixels = pixels(index, one, left, right, tolerance);
            if (!pixels.isEmpty()) {
                differences.add(output + ": " + pixels);
            }
        }
        return differences;
    }

    private static String kept(byte[] bytes) {
        return bytes == null ? "not kept" : bytes.length + " bytes";
    }

    private static boolean isJpeg(ImageLayout image) {
        return image.format().equals(PixelFormat.JPEG.name());
    }

    private static byte[] content(ImageLayout image) throws MistakeException {
        byte[] bytes = image.bytes();
        int[] planes = image.planeSizes();
        if (bytes == null || !isJpeg(image) || planes == null || planes.length == 0) {
            return bytes;
        }
        byte[] file = Arrays.copyOf(bytes, Math.max(0, Math.min(planes[0], bytes.length)));
        Matcher time = EXIF_TIME.matcher(new String(file, StandardCharsets.ISO_8859_1));
        while (time.find()) {
            Arrays.fill(file, time.start(), time.end(), (byte) 0);
        }
        return file;
    }

    // Describes how the bytes differ. Returns "" if pixels differ by at most the tolerance; other bytes are
    // then ignored. If all pixels are equal, reports the other bytes, whatever the tolerance.
    private String pixels(int index, ImageLayout image, byte[] one, byte[] other, double tolerance)
            throws MistakeException, IOException {
        int at = Arrays.mismatch(one, other);
        int[] strides = image.rowStrides();
        ImageDifference difference = strides == null || strides.length == 0
                ? null
                : ImageDifference.of(image.format(), image.width(), image.height(),
                        strides[0], one, other);
        if (difference == null) {
            return "first differs at byte " + at;
        }
        if (difference.firstRow() < 0) {
            return "all pixels are equal; other bytes differ, first at byte " + at;
        }
        if (tolerance > 0 && difference.most() <= tolerance) {
            return "";
        }
        return "first differing row %d, largest difference %d of 255, PSNR %.1f dB%s".formatted(
                difference.firstRow(), difference.most(), difference.psnr(), write(index, difference));
    }

    private String write(int index, ImageDifference difference) throws MistakeException, IOException {
        if (mPictures == null) {
            return "";
        }
        Files.createDirectories(mPictures);
        String name = mName + "-out" + index;
        List<Path> written = new ArrayList<>();
        List<Callable<Path>> work = List.of(() -> write(difference.one(), name + "-one.png"),
                () -> write(difference.other(), name + "-other.png"),
                () -> write(difference.picture(), name + "-difference.png"));
        // In parallel: a picture of 50 megapixels takes seconds.
        SideBySide.run("writing pictures", work.size(), work, written::add);
        return "; " + written.get(written.size() - 1) + " (amplified " + ImageDifference.AMPLIFICATION
                + " times)";
    }

    private Path write(PixelRows picture, String name) throws IOException {
        Path file = mPictures.resolve(name);
        picture.writePng(file);
        return file;
    }
}
