package com.orlu.orlu3rdalgoservice.tool.request;

/** Limits of a request. */
public final class Limits {
    public static final int FRAMES = 60;
    /** Images per frame. */
    public static final int IMAGES = 4;
    /** Pixels per side of a frame made from a photo, or of an output. */
    static final int SIDE = 8192;
    /** Pixels per side of an image file; the largest sensors have fewer. */
    public static final int FILE_SIDE = 1 << 14;

    private Limits() {
    }
}
