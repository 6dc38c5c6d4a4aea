package android.hardware.camera2.impl;

import android.os.Parcel;
import android.os.Parcelable;
import java.util.HashMap;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;

/** The typed store of a camera's metadata. Every value is converted to its tag's type when it is set. */
public final class CameraMetadataNative implements Parcelable {
    private final Map<String, Object> mValues = new HashMap<>();

    private LookupListener mLookupListener;

    /** Sets the listener; null, the initial value, means no listener. */
    public void setLookupListener(LookupListener listener) {
        mLookupListener = listener;
    }

    /** Reads like {@link #get(String, Class)}, for capture results, and reports the read to the listener. */
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
     * Sets a tag. Arrays may be primitive or boxed; null removes the tag. Throws IllegalArgumentException for
     * an unknown tag, and for a value that does not fit the tag's type, such as an array that contains null.
     */
    public void set(String tag, Object value) {
        TagType type = typeOf(tag);
        if (value == null) {
            mValues.remove(tag);
            return;
        }
        Object stored = TagConversion.convert(value, type.stored());
        if (stored == null) {
            throw new IllegalArgumentException("Tag " + tag + ": expected " + type
                    + (value instanceof Object[] ? " without null elements" : "") + ", found "
                    + value.getClass().getSimpleName());
        }
        mValues.put(tag, stored);
    }

    /** Returns a copy of the tag's value, in the class in which it is stored; null if absent. */
    public Object get(String tag) {
        return get(tag, typeOf(tag).stored());
    }

    /**
     * Returns the value as {@code type}; null if absent. Throws IllegalArgumentException for an unknown tag,
     * and for a type that does not fit: an array of several values is not a scalar, and an int is not a long.
     */
    public <T> T get(String tag, Class<T> type) {
        TagType held = typeOf(tag);
        Object value = mValues.get(tag);
        if (value == null) {
            return null;
        }
        Object converted = TagConversion.convert(value, type);
        if (converted == null) {
            throw new IllegalArgumentException("Tag " + tag + ": a value of type " + held
                    + " can't be read as " + type.getSimpleName());
        }
        return type.cast(converted);
    }

    /** Returns the tags that are set, sorted. */
    public Set<String> tags() {
        return new TreeSet<>(mValues.keySet());
    }

    /** Writes the number of tags, then for each tag, in order: name, type, number of values, values. */
    @Override
    public void writeToParcel(Parcel destination, int flags) {
        destination.writeInt(mValues.size());
        for (String tag : tags()) {
            destination.writeString(tag);
            TagParcel.write(destination, TagTable.typeOf(tag), mValues.get(tag));
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
