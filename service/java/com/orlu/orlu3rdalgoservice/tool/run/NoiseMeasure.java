package com.orlu.orlu3rdalgoservice.tool.run;

import com.orlu.orlu3rdalgoservice.tool.image.Mosaic;
import com.orlu.orlu3rdalgoservice.tool.image.OutputReader;
import com.orlu.orlu3rdalgoservice.tool.image.Picture;
import com.orlu.orlu3rdalgoservice.tool.image.Psnr;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;
import com.orlu.orlu3rdalgoservice.tool.request.FrameSetPlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;

import java.util.ArrayList;
import java.util.List;

/** How near the base frame and the result are to the clean photo, for requests that noise was added to. */
public final class NoiseMeasure {
    private final RequestFile mRequest;
    private final int mBase;
    private final FrameSetPlan mFrames;

    public NoiseMeasure(RequestFile request, int base) {
        mRequest = request;
        mBase = base;
        mFrames = request.frames();
    }

    /** A line for each output that shows the base frame's part of the photo. */
    public List<String> lines(List<SynthesisedFrame> frames, List<OutputReader> outputs) {
        List<String> lines = new ArrayList<>();
        // A frame from a file has no clean photo to be compared with, nor has one that was darkened or
        // brightened on purpose.
        if (!mRequest.isOfPhoto(mBase) || !mFrames.hasNoise()
                || mFrames.frames().get(mBase).gain() != 1) {
            return lines;
        }
        for (int i = 0; i < outputs.size(); ++i) {
            String line = line(frames.get(mBase), outputs.get(i));
            if (line != null) {
                lines.add("output " + i + ", " + line);
            }
        }
        return lines;
    }

    private static String line(SynthesisedFrame base, OutputReader output) {
        Picture clean = base.clean().get();
        if (output.mosaic() != null) {
            int bits = output.mosaic().bits();
            Mosaic reference = Mosaic.of(clean, bits);
            return line("raw", Psnr.ofMosaic(reference, Mosaic.of(base.shot(), bits)),
                    Psnr.ofMosaic(reference, output.mosaic()));
        }
        return output.picture() == null ? null : line("luma", Psnr.ofLuma(clean, base.shot()),
                Psnr.ofLuma(clean, output.picture()));
    }

    private static String line(String what, double before, double after) {
        return Double.isNaN(after) ? null
                : "%s PSNR %.1f dB before, %.1f dB after (%+.1f dB)".formatted(
                        what, before, after, after - before);
    }
}
