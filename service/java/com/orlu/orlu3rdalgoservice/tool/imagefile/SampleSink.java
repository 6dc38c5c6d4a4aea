package com.orlu.orlu3rdalgoservice.tool.imagefile;

/** Receives each sample of a raw image once, in row order. */
@FunctionalInterface
public interface SampleSink {
    /** Receives the sample of a pixel, 0 to 65535. */
    void put(int x, int y, int sample);
}
