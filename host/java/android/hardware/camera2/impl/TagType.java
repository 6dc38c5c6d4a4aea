package android.hardware.camera2.impl;

import android.graphics.Rect;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.util.Rational;

/** The type of a tag's value, and the class that stores it. */
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

    /** Returns whether a value in a parcel includes its own length, as arrays and strings do. */
    boolean isCounted() {
        return mStored.isArray() || this == STRING;
    }

    public Class<?> stored() {
        return mStored;
    }
}
