package com.orlu.orlu3rdalgoservice.tool.run;

import com.orlu.orlu3rdalgoservice.tool.image.Mosaic;
import com.orlu.orlu3rdalgoservice.tool.image.OutputReader;
import com.orlu.orlu3rdalgoservice.tool.image.Picture;
import com.orlu.orlu3rdalgoservice.tool.image.Psnr;
import com.orlu.orlu3rdalgoservice.tool.image.Ssim;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;

import java.util.ArrayList;
import java.util.List;

/**
 * The similarity of an output to the clean photo.
 *
 * @param what   "luma", or "raw" for all samples of a mosaic
 * @param before PSNR of the base frame before processing, in dB
 * @param after  PSNR of the output, in dB
 * @param ssim   structural similarity of the output; NaN if not requested
 */
public record NoiseMeasure(int output, String what, double before, double after, double ssim) {
    /**
     * Compares the outputs with the crop of the photo from which the base frame was made. Omits outputs that
     * can't be read or differ in size from this crop. If no frame has noise, compares only if `hasSsim`.
     */
    public static List<NoiseMeasure> of(RequestFile request, int base, List<SynthesisedFrame> frames,
            List<OutputReader> outputs, boolean hasSsim) {
        List<NoiseMeasure> measures = new ArrayList<>();
        // Frames from files have no clean photo, and a gain makes frames brighter or darker than the photo.
        if (!request.isOfPhoto(base) || !request.frames().hasNoise() && !hasSsim
                || request.frames().frames().get(base).gain() != 1) {
            return measures;
        }
        for (int i = 0; i < outputs.size(); ++i) {
            NoiseMeasure measure = measure(i, frames.get(base), outputs.get(i), hasSsim);
            if (measure != null && !Double.isNaN(measure.after())) {
                measures.add(measure);
            }
        }
        return measures;
    }

    public String line() {
        return "output %d, %s PSNR %.1f dB before, %.1f dB after (%+.1f dB)".formatted(
                output, what, before, after, after - before);
    }

    private static NoiseMeasure measure(
            int index, SynthesisedFrame base, OutputReader output, boolean hasSsim) {
        Picture clean = base.clean().get();
        if (output.mosaic() != null) {
            int bits = output.mosaic().bits();
            Mosaic reference = Mosaic.of(clean, bits);
            return new NoiseMeasure(index, "raw", Psnr.ofMosaic(reference, Mosaic.of(base.shot(), bits)),
                    Psnr.ofMosaic(reference, output.mosaic()),
                    hasSsim ? Ssim.of(reference, output.mosaic()) : Double.NaN);
        }
        return output.picture() == null ? null : new NoiseMeasure(index, "luma",
                Psnr.ofLuma(clean, base.shot()), Psnr.ofLuma(clean, output.picture()),
                hasSsim ? Ssim.of(clean, output.picture()) : Double.NaN);
    }
}
