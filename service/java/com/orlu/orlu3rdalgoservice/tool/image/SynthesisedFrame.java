package com.orlu.orlu3rdalgoservice.tool.image;

import java.util.function.Supplier;

/**
 * A frame made from a photo.
 *
 * @param clean crops the frame from the photo; each call crops again, since keeping the result costs memory
 * @param shot  the same part with blur, brightness and noise
 */
public record SynthesisedFrame(Supplier<Picture> clean, Picture shot) {
}
