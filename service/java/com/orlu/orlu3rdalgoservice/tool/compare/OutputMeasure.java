package com.orlu.orlu3rdalgoservice.tool.compare;

import com.orlu.orlu3rdalgoservice.tool.image.ImageDifference;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.List;

/**
 * The similarity of two runs' outputs: the minimum over all outputs.
 *
 * @param psnr   in dB; infinite for equal pixels, NaN if outputs can't be compared
 * @param ssim   structural similarity, 1 for equal pixels
 * @param output the index of the output with the lowest PSNR, or of the last output that can't be compared
 */
public record OutputMeasure(double psnr, double ssim, int output) {
    /** The measure of outputs that can't be compared. */
    public static final OutputMeasure NONE = new OutputMeasure(Double.NaN, Double.NaN, 0);

    /**
     * Compares the outputs in pairs. If the runs have different numbers of outputs, PSNR and SSIM are NaN. If
     * neither run has outputs, PSNR is infinite and SSIM is 1.
     */
    public static OutputMeasure of(Run one, Run other) throws MistakeException {
        List<ImageLayout> left = one.results();
        List<ImageLayout> right = other.results();
        double psnr = left.size() == right.size() ? Double.POSITIVE_INFINITY : Double.NaN;
        double ssim = left.size() == right.size() ? 1 : Double.NaN;
        int worst = 0;
        for (int i = 0; i < Math.min(left.size(), right.size()); ++i) {
            ImageDifference difference = difference(left.get(i), right.get(i));
            worst = difference == null || difference.psnr() < psnr ? i : worst;
            // Math.min propagates NaN.
            psnr = Math.min(psnr, difference == null ? Double.NaN : difference.psnr());
            ssim = Math.min(ssim, difference == null ? Double.NaN : difference.ssim());
        }
        return new OutputMeasure(psnr, ssim, worst);
    }

    /** Returns the difference of two outputs; null if they can't be compared. */
    public static ImageDifference difference(ImageLayout one, ImageLayout other) throws MistakeException {
        byte[] left = one.bytes();
        byte[] right = other.bytes();
        int[] strides = one.rowStrides();
        if (left == null || right == null || strides == null || strides.length == 0) {
            return null;
        }
        boolean isSame = one.format().equals(other.format()) && one.width() == other.width()
                && one.height() == other.height();
        return isSame ? ImageDifference.of(one.format(), one.width(), one.height(), strides[0], left, right)
                : null;
    }

    public String psnrText() {
        return Double.isNaN(psnr) ? "-" : Double.isInfinite(psnr) ? "equal" : "%.1f".formatted(psnr);
    }

    public String ssimText() {
        return Double.isNaN(ssim) ? "-" : "%.4f".formatted(ssim);
    }
}
