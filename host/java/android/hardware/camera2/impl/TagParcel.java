package android.hardware.camera2.impl;

import android.graphics.Rect;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.os.Parcel;
import android.util.Rational;

/** Writes a tag's value to a parcel: the type, the number of elements and the elements. */
final class TagParcel {
    private TagParcel() {
    }

    static void write(Parcel parcel, TagType type, Object value) {
        parcel.writeInt(type.ordinal());
        if (!type.isCounted()) {
            parcel.writeInt(1);
        }
        switch (type) {
            case INT -> parcel.writeInt((Integer) value);
            case LONG -> parcel.writeLong((Long) value);
            case FLOAT -> parcel.writeFloat((Float) value);
            case DOUBLE -> parcel.writeDouble((Double) value);
            case STRING -> parcel.writeString((String) value);
            case BYTES -> parcel.writeByteArray((byte[]) value);
            case INT_ARRAY -> parcel.writeIntArray((int[]) value);
            case LONG_ARRAY -> parcel.writeLongArray((long[]) value);
            case FLOAT_ARRAY -> parcel.writeFloatArray((float[]) value);
            case DOUBLE_ARRAY -> parcel.writeDoubleArray((double[]) value);
            case STRING_ARRAY -> parcel.writeStringArray((String[]) value);
            case RECT -> writeRect(parcel, (Rect) value);
            case FACES -> writeFaces(parcel, (Face[]) value);
            case METERING_RECTANGLES -> writeRegions(parcel, (MeteringRectangle[]) value);
            case LOCATION -> writeLocation(parcel, (Location) value);
            case RATIONAL -> {
                parcel.writeInt(((Rational) value).getNumerator());
                parcel.writeInt(((Rational) value).getDenominator());
            }
        }
    }

    private static void writeRect(Parcel parcel, Rect rect) {
        parcel.writeInt(rect.left);
        parcel.writeInt(rect.top);
        parcel.writeInt(rect.right);
        parcel.writeInt(rect.bottom);
    }

    private static void writeFaces(Parcel parcel, Face[] faces) {
        parcel.writeInt(faces.length);
        for (Face face : faces) {
            writeRect(parcel, face.getBounds());
            parcel.writeInt(face.getScore());
        }
    }

    private static void writeRegions(Parcel parcel, MeteringRectangle[] regions) {
        parcel.writeInt(regions.length);
        for (MeteringRectangle region : regions) {
            writeRect(parcel, region.getRect());
            parcel.writeInt(region.getMeteringWeight());
        }
    }

    private static void writeLocation(Parcel parcel, Location location) {
        parcel.writeString(location.getProvider());
        parcel.writeDouble(location.getLatitude());
        parcel.writeDouble(location.getLongitude());
        parcel.writeInt(location.hasAltitude() ? 1 : 0);
        parcel.writeDouble(location.getAltitude());
        parcel.writeLong(location.getTime());
    }
}
