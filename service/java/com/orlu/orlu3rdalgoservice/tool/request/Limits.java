package com.orlu.orlu3rdalgoservice.tool.request;

/** What a request can hold at most. */
public final class Limits {
    public static final int FRAMES = 60;
    /** Images of a frame. */
    public static final int IMAGES = 4;
    /** Pixels of a side of a frame made of a photo, or of an output. */
    static final int SIDE = 8192;
    /** Pixels of a side of a file with an image; the largest sensors have fewer. */
    public static final int FILE_SIDE = 1 << 14;

    private Limits() {
    }
}
