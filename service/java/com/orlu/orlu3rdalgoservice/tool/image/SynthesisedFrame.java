package com.orlu.orlu3rdalgoservice.tool.image;

import java.util.function.Supplier;

/**
 * A frame made from a photo.
 *
 * @param clean returns the frame's part of the photo; each call crops the photo again, to save memory
 * @param shot  the frame itself: this part of the photo with blur, gain and noise
 */
public record SynthesisedFrame(Supplier<Picture> clean, Picture shot) {
}
