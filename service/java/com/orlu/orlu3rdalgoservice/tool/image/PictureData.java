package com.orlu.orlu3rdalgoservice.tool.image;

import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;
import java.util.Base64;

/** A picture embedded in a page as a JPEG file. */
public record PictureData(byte[] jpeg, int width, int height) {
    /** Limit of a picture's bytes; a page has several pictures. */
    public static final int LARGEST = 800_000;
    private static final float[] QUALITIES = {0.9f, 0.8f, 0.7f};
    private static final float SMALL_QUALITY = 0.8f;
    private static final int SMALL_WIDTH = 640;

    /** Encodes the image in its own size, or halves it until its JPEG file has at most `most` bytes. */
    public static PictureData of(BufferedImage image, int most) {
        for (BufferedImage scaled = image; ; scaled = scaled(scaled, Math.max(1, scaled.getWidth() / 2))) {
            for (float quality : QUALITIES) {
                byte[] jpeg = JpegEncoder.encode(scaled, quality);
                if (jpeg.length <= most) {
                    return new PictureData(jpeg, scaled.getWidth(), scaled.getHeight());
                }
                // The file is far too large: trying a lower quality would waste time.
                if (jpeg.length > 2L * most) {
                    break;
                }
            }
        }
    }

    /** Returns the picture as a page shows it, in a JPEG file of at most LARGEST bytes. */
    public static PictureData of(PixelRows picture) {
        return of(ShownImage.of(picture), LARGEST);
    }

    /** Returns the JPEG file unchanged, or encodes its image, `shown`, if the file exceeds LARGEST bytes. */
    public static PictureData of(byte[] file, PixelRows picture, BufferedImage shown) {
        return file.length <= LARGEST ? new PictureData(file, picture.width(), picture.height())
                : of(shown, LARGEST);
    }

    /** Returns a copy for a page of many pictures. */
    public static PictureData small(PixelRows picture) {
        return small(ShownImage.of(picture), SMALL_WIDTH);
    }

    /** Returns a small copy, at most this wide. */
    public static PictureData small(BufferedImage image, int width) {
        BufferedImage scaled = image.getWidth() <= width ? image : scaled(image, width);
        return new PictureData(
                JpegEncoder.encode(scaled, SMALL_QUALITY), scaled.getWidth(), scaled.getHeight());
    }

    private static BufferedImage scaled(BufferedImage image, int width) {
        // Halves repeatedly: one large step would skip most pixels.
        BufferedImage from = image.getWidth() >= 2 * width + 2
                ? scaled(image, (image.getWidth() + 1) / 2) : image;
        int height = Math.max(1, (int) Math.round((double) image.getHeight() * width / image.getWidth()));
        BufferedImage to = new BufferedImage(width, height, BufferedImage.TYPE_3BYTE_BGR);
        Graphics2D graphics = to.createGraphics();
        graphics.setRenderingHint(
                RenderingHints.KEY_INTERPOLATION, RenderingHints.VALUE_INTERPOLATION_BILINEAR);
        graphics.drawImage(from, 0, 0, width, height, null);
        graphics.dispose();
        return to;
    }

    /** A data URI for an image element. */
    public String uri() {
        return "data:image/jpeg;base64," + Base64.getEncoder().encodeToString(jpeg);
    }
}
