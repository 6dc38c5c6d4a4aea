package com.orlu.orlu3rdalgoservice.tool.image;

import java.util.function.Supplier;

/**
 * A frame made of a photo.
 *
 * @param clean the photo's part that the frame shows, cut out anew each time to save memory
 * @param shot  the same with blur, brightness and noise, as a camera would have shot it
 */
public record SynthesisedFrame(Supplier<Picture> clean, Picture shot) {
}
