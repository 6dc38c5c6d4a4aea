package com.orlu.orlu3rdalgoservice.tool.image;

import java.util.function.Supplier;

/**
 * A frame made from a photo.
 *
 * @param clean returns the frame's part of the photo; each call crops it again, to save memory
 * @param shot  the frame: this part with blur, gain and noise
 */
public record SynthesisedFrame(Supplier<Picture> clean, Picture shot) {
}
