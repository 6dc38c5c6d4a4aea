package android.hardware.camera2.impl;

import android.graphics.Rect;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.util.Rational;

/** The types of tag values, each with the Java class that stores the value. */
public enum TagType {
    INT(Integer.class),
    LONG(Long.class),
    FLOAT(Float.class),
    DOUBLE(Double.class),
    STRING(String.class),
    BYTES(byte[].class),
    INT_ARRAY(int[].class),
    LONG_ARRAY(long[].class),
    FLOAT_ARRAY(float[].class),
    DOUBLE_ARRAY(double[].class),
    STRING_ARRAY(String[].class),
    RECT(Rect.class),
    FACES(Face[].class),
    METERING_RECTANGLES(MeteringRectangle[].class),
    LOCATION(Location.class),
    RATIONAL(Rational.class);

    private final Class<?> mStored;

    TagType(Class<?> stored) {
        mStored = stored;
    }

    /** Returns whether a parcel's format for this type starts with a length, as for arrays and strings. */
    boolean isCounted() {
        return mStored.isArray() || this == STRING;
    }

    public Class<?> stored() {
        return mStored;
    }
}
