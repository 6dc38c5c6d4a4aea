package com.orlu.orlu3rdalgoservice.tool;

/**
 * A frame made of a photo.
 *
 * @param clean  the photo's part that the frame shows
 * @param shot   the same with blur, brightness and noise, as a camera would have shot it
 * @param shiftX pixels that the part lies right of the photo's middle
 * @param shiftY pixels that it lies below
 */
record SynthesisedFrame(Picture clean, Picture shot, int shiftX, int shiftY) {
}
