package com.orlu.orlu3rdalgoservice.tool.image;

/** Peak signal-to-noise ratio in dB: by luma for 8-bit pictures, by all samples for raw images. */
public final class Psnr {
    private Psnr() {
    }

    /** By luma over all pixels; NaN if the sizes differ, infinite for equal pictures. */
    public static double ofLuma(PixelRows reference, PixelRows picture) {
        if (reference.width() != picture.width() || reference.height() != picture.height()) {
            return Double.NaN;
        }
        float[] one = new float[picture.width() * PixelRows.CHANNELS];
        float[] other = new float[one.length];
        double squares = 0;
        for (int y = 0; y < picture.height(); ++y) {
            reference.read(y, one);
            picture.read(y, other);
            squares = addLuma(squares, one, other);
        }
        return ofLuma(squares, picture);
    }

    /** Adds the squares of the differences of two rows. */
    static double addLuma(double squares, float[] one, float[] other) {
        double sum = squares;
        for (int at = 0; at < one.length; at += PixelRows.CHANNELS) {
            double difference = (double) PixelRows.luma(one, at) - PixelRows.luma(other, at);
            sum += difference * difference;
        }
        return sum;
    }

    static double ofLuma(double squares, PixelRows picture) {
        return decibel(squares, (long) picture.width() * picture.height(), PixelRows.WHITE);
    }

    /** By all samples of two mosaics; NaN if the sizes differ. */
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
