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

    private LookupListener mLookupListener;

    /** Null, as at first: nobody listens. */
    public void setLookupListener(LookupListener listener) {
        mLookupListener = listener;
    }

    /** {@link #get(String, Class)} for a capture result's reader, which the listener hears of. */
    public <T> T lookUp(String tag, Class<T> type) {
        LookupListener listener = mLookupListener;
        if (listener == null) {
            return get(tag, type);
        }
        try {
            T value = get(tag, type);
            listener.onLookup(tag, type, mValues.get(tag), null);
            return value;
        } catch (IllegalArgumentException e) {
            listener.onLookup(tag, type, mValues.get(tag), e);
            throw e;
        }
    }

    /**
     * Sets a tag. Arrays may be primitive or boxed; null takes the tag away. Throws IllegalArgumentException
     * for a tag that no table knows and a value that does not fit its type, which no array with a null in it
     * does.
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
                    + value.getClass().getSimpleName() + (value instanceof Object[] ? ", and no nulls" : ""));
        }
        mValues.put(tag, stored);
    }

    /** A copy of the value in its tag's own class; null when the tag is absent. */
    public Object get(String tag) {
        return get(tag, typeOf(tag).stored());
    }

    /**
     * The value as {@code type}; null when the tag is absent. Throws IllegalArgumentException for a tag that
     * no table knows and a type that its value can't be: an array of several is no scalar, an int no long.
     */
    public <T> T get(String tag, Class<T> type) {
        TagType held = typeOf(tag);
        Object value = mValues.get(tag);
        if (value == null) {
            return null;
        }
        Object converted = TagConversion.convert(value, type);
        if (converted == null) {
            throw new IllegalArgumentException("Tag " + tag + " holds " + held + ", asked for as "
                    + type.getSimpleName());
        }
        return type.cast(converted);
    }

    /** The tags that are set, sorted. */
    public Set<String> tags() {
        return Collections.unmodifiableSet(mValues.keySet());
    }

    /** Writes the number of tags, then for each, by name: its name, type, number of values, values. */
    @Override
    public void writeToParcel(Parcel destination, int flags) {
        destination.writeInt(mValues.size());
        for (Map.Entry<String, Object> entry : mValues.entrySet()) {
            destination.writeString(entry.getKey());
            TagParcel.write(destination, TagTable.typeOf(entry.getKey()), entry.getValue());
        }
    }

    private static TagType typeOf(String tag) {
        TagType type = tag == null ? null : TagTable.typeOf(tag);
        if (type == null) {
            throw new IllegalArgumentException("Could not find tag for key '" + tag + "'");
        }
        return type;
    }
}
