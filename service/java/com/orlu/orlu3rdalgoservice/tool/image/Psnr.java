package com.orlu.orlu3rdalgoservice.tool.image;

/** Peak signal-to-noise ratio in dB: by luma for 8-bit pictures, by all samples for raw images. */
public final class Psnr {
    private Psnr() {
    }

    /** PSNR of the luma of all pixels; NaN if the sizes differ, infinite if the pictures are equal. */
    public static double ofLuma(PixelRows reference, PixelRows picture) {
        ImageDifference difference = ImageDifference.of(reference, picture);
        return difference == null ? Double.NaN : difference.psnr();
    }

    static double ofLuma(double squares, PixelRows picture) {
        return decibel(squares, (long) picture.width() * picture.height(), PixelRows.WHITE);
    }

    /** PSNR of all samples; NaN if the sizes differ, infinite if the mosaics are equal. */
    public static double ofMosaic(Mosaic reference, Mosaic mosaic) {
        if (reference.width() != mosaic.width() || reference.height() != mosaic.height()) {
            return Double.NaN;
        }
        double squares = 0;
        for (int i = 0; i < mosaic.samples().length; ++i) {
            double difference = (double) reference.samples()[i] - mosaic.samples()[i];
            squares += difference * difference;
        }
        return decibel(squares, mosaic.samples().length, reference.white());
    }

    private static double decibel(double squares, long count, double peak) {
        return 10 * Math.log10(peak * peak * count / squares);
    }
}
