package com.orlu.orlu3rdalgoservice.tool.image;

import java.util.function.Supplier;

/**
 * A frame made from a photo.
 *
 * @param clean cuts the frame's part out of the photo; each call does it anew, to save memory
 * @param shot  the same part with blur, brightness and noise
 */
public record SynthesisedFrame(Supplier<Picture> clean, Picture shot) {
}
