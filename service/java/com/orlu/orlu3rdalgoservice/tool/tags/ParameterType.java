package com.orlu.orlu3rdalgoservice.tool.tags;

/** How a parameter's bytes are to be read. */
public enum ParameterType {
    INT("int"),
    INTS("int[]"),
    LONG("long"),
    UNSIGNED_LONG("ulong"),
    LONGS("long[]"),
    FLOAT("float"),
    FLOATS("float[]"),
    DOUBLES("double[]"),
    /** Words of 64 bits, each a flag. */
    BITS("bits"),
    BOOL("bool"),
    TEXT("text"),
    /** A time in milliseconds: an int, or a float where the low-light raw step hands it over. */
    MILLISECONDS("ms"),
    /** An int count, then bytes that are not used. */
    COUNT("count"),
    /** Left, top, right, bottom. */
    RECT("rect"),
    /** Left, top, width, height. */
    CROP("crop"),
    /** The sensor's crop: left, right, top, bottom and a flag. */
    SENSOR_CROP("sensor"),
    FACES("faces"),
    FACE_OUTLINE("outline"),
    EXIF("exif"),
    REFOCUS_PACK("refocus"),
    PHASE_DETECTION("pdaf"),
    BYTES("bytes"),
    /** No row in parameters.txt. */
    UNKNOWN("unknown");

    private final String mText;

    ParameterType(String text) {
        mText = text;
    }

    /** What it is called for people. */
    public String text() {
        return mText;
    }
}
