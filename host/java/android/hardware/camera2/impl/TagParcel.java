package android.hardware.camera2.impl;

import android.graphics.Rect;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.os.Parcel;
import android.util.Rational;

/** One stored value in a parcel: its type, how many values it has, the values. */
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

    static Object read(Parcel parcel, TagType type) {
        if (parcel.readInt() != type.ordinal() || (!type.isCounted() && parcel.readInt() != 1)) {
            throw new IllegalArgumentException("The parcel holds another type than " + type);
        }
        return switch (type) {
            case INT -> parcel.readInt();
            case LONG -> parcel.readLong();
            case FLOAT -> parcel.readFloat();
            case DOUBLE -> parcel.readDouble();
            case STRING -> parcel.readString();
            case BYTES -> parcel.createByteArray();
            case INT_ARRAY -> parcel.createIntArray();
            case LONG_ARRAY -> parcel.createLongArray();
            case FLOAT_ARRAY -> parcel.createFloatArray();
            case DOUBLE_ARRAY -> parcel.createDoubleArray();
            case STRING_ARRAY -> parcel.createStringArray();
            case RECT -> readRect(parcel);
            case FACES -> readFaces(parcel);
            case METERING_RECTANGLES -> readRegions(parcel);
            case LOCATION -> readLocation(parcel);
            case RATIONAL -> new Rational(parcel.readInt(), parcel.readInt());
        };
    }

    private static void writeRect(Parcel parcel, Rect rect) {
        parcel.writeInt(rect.left);
        parcel.writeInt(rect.top);
        parcel.writeInt(rect.right);
        parcel.writeInt(rect.bottom);
    }

    private static Rect readRect(Parcel parcel) {
        return new Rect(parcel.readInt(), parcel.readInt(), parcel.readInt(), parcel.readInt());
    }

    private static void writeFaces(Parcel parcel, Face[] faces) {
        parcel.writeInt(faces.length);
        for (Face face : faces) {
            writeRect(parcel, face.getBounds());
            parcel.writeInt(face.getScore());
        }
    }

    private static Face[] readFaces(Parcel parcel) {
        Face[] faces = new Face[parcel.readLength()];
        for (int i = 0; i < faces.length; i++) {
            faces[i] = new Face(readRect(parcel), parcel.readInt());
        }
        return faces;
    }

    private static void writeRegions(Parcel parcel, MeteringRectangle[] regions) {
        parcel.writeInt(regions.length);
        for (MeteringRectangle region : regions) {
            writeRect(parcel, region.getRect());
            parcel.writeInt(region.getMeteringWeight());
        }
    }

    private static MeteringRectangle[] readRegions(Parcel parcel) {
        MeteringRectangle[] regions = new MeteringRectangle[parcel.readLength()];
        for (int i = 0; i < regions.length; i++) {
            regions[i] = new MeteringRectangle(readRect(parcel), parcel.readInt());
        }
        return regions;
    }

    private static void writeLocation(Parcel parcel, Location location) {
        parcel.writeString(location.getProvider());
        parcel.writeDouble(location.getLatitude());
        parcel.writeDouble(location.getLongitude());
        parcel.writeInt(location.hasAltitude() ? 1 : 0);
        parcel.writeDouble(location.getAltitude());
        parcel.writeLong(location.getTime());
    }

    private static Location readLocation(Parcel parcel) {
        Location location = new Location(parcel.readString());
        location.setLatitude(parcel.readDouble());
        location.setLongitude(parcel.readDouble());
        boolean hasAltitude = parcel.readInt() != 0;
        double altitude = parcel.readDouble();
        if (hasAltitude) {
            location.setAltitude(altitude);
        }
        location.setTime(parcel.readLong());
        return location;
    }
}
