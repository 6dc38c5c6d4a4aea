package android.hardware.camera2.impl;

import android.os.Parcel;
import android.os.Parcelable;
import java.util.Collections;
import java.util.Map;
import java.util.Set;
import java.util.TreeMap;

/** The typed store behind capture results: a tag holds a value of its type, whatever it was set from. */
public final class CameraMetadataNative implements Parcelable {
    private final Map<String, Object> mValues = new TreeMap<>();

    /**
     * Sets a tag. Arrays may be primitive or boxed; null takes the tag away. Throws IllegalArgumentException for a tag
     * that no table knows and a value that does not fit its type.
     */
    public void set(String tag, Object value) {
        TagType type = typeOf(tag);
        if (value == null) {
            mValues.remove(tag);
            return;
        }
        Object stored = TagConversion.convert(value, type.stored());
        if (stored == null) {
            throw new IllegalArgumentException("Tag " + tag + " holds " + type + ", not "
                    + value.getClass().getSimpleName());
        }
        mValues.put(tag, stored);
    }

    /** The value as it is stored; null when the tag is absent. */
    public Object get(String tag) {
        typeOf(tag);
        return mValues.get(tag);
    }

    /**
     * The value as {@code type}; null when the tag is absent. Throws IllegalArgumentException for a tag that no table
     * knows and a type that its value can't be.
     */
    public <T> T get(String tag, Class<T> type) {
        Object value = get(tag);
        if (value == null) {
            return null;
        }
        Object converted = TagConversion.convert(value, type);
        if (converted == null) {
            throw new IllegalArgumentException("Tag " + tag + " holds " + typeOf(tag) + ", asked for as "
                    + type.getSimpleName());
        }
        return type.cast(converted);
    }

    /** The tags that are set, sorted. */
    public Set<String> tags() {
        return Collections.unmodifiableSet(mValues.keySet());
    }

    @Override
    public void writeToParcel(Parcel destination, int flags) {
        destination.writeInt(mValues.size());
        for (Map.Entry<String, Object> entry : mValues.entrySet()) {
            destination.writeString(entry.getKey());
            TagParcel.write(destination, TagTable.typeOf(entry.getKey()), entry.getValue());
        }
    }

    /** Replaces what is set by what {@link #writeToParcel} wrote. */
    public void readFromParcel(Parcel source) {
        mValues.clear();
        int count = source.readInt();
        for (int i = 0; i < count; i++) {
            String tag = source.readString();
            mValues.put(tag, TagParcel.read(source));
        }
    }

    private static TagType typeOf(String tag) {
        TagType type = TagTable.typeOf(tag);
        if (type == null) {
            throw new IllegalArgumentException("Could not find tag for key '" + tag + "'");
        }
        return type;
    }
}
