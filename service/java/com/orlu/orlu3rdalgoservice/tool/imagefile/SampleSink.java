package com.orlu.orlu3rdalgoservice.tool.imagefile;

/** Takes the samples of a raw image, each once, in the file's order. */
@FunctionalInterface
public interface SampleSink {
    /** The sample of a pixel, 0 to 65535. */
    void put(int x, int y, int sample);
}
