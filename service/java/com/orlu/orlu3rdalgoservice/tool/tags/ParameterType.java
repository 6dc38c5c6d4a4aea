package com.orlu.orlu3rdalgoservice.tool.tags;

/** The types of parameters, which define the format of their bytes. */
public enum ParameterType {
    INT("int"),
    INTS("int[]"),
    LONG("long"),
    UNSIGNED_LONG("ulong"),
    LONGS("long[]"),
    FLOAT("float"),
    FLOATS("float[]"),
    DOUBLES("double[]"),
    /** Words of 64 bits; each bit is a flag. */
    BITS("bits"),
    BOOL("bool"),
    TEXT("text"),
    /** A time in milliseconds: an int, or a float if the low-light raw step writes it. */
    MILLISECONDS("ms"),
    /** An int count, followed by unused bytes. */
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
    /** The type of parameters without a row in parameters.txt. */
    UNKNOWN("unknown");

    private final String mText;

    ParameterType(String text) {
        mText = text;
    }

    /** The name that users see. */
    public String text() {
        return mText;
    }
}
