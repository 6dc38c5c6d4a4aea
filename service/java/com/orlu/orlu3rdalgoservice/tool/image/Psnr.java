package com.orlu.orlu3rdalgoservice.tool.image;

/** Peak signal to noise ratio in dB, of 8-bit pictures by their luma, of raw images by all samples. */
public final class Psnr {
    private Psnr() {
    }

    /** By luma, over all pixels. NaN when the sizes differ, infinite for equal pictures. */
    public static double ofLuma(Picture reference, Picture picture) {
        if (reference.width() != picture.width() || reference.height() != picture.height()) {
            return Double.NaN;
        }
        double squares = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                double difference = (double) reference.luma(x, y) - picture.luma(x, y);
                squares += difference * difference;
            }
        }
        return decibel(squares, (long) picture.width() * picture.height(), Picture.WHITE);
    }

    /** By all samples of two mosaics. NaN when the sizes differ. */
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
