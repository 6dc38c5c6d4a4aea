package android.os;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;

/** Little-endian bytes of the values in the order of writing. A length precedes each string and array. */
public final class Parcel {
    private static final int NULL_LENGTH = -1;
    private static final int FIRST_CAPACITY = 256;

    private ByteBuffer mData = ByteBuffer.allocate(FIRST_CAPACITY).order(ByteOrder.LITTLE_ENDIAN);
    private boolean mAllowFds = true;

    private Parcel() {
    }

    public static Parcel obtain() {
        return new Parcel();
    }

    /** Empties the parcel. */
    public void recycle() {
        mData = ByteBuffer.allocate(FIRST_CAPACITY).order(ByteOrder.LITTLE_ENDIAN);
    }

    /** Stores the setting, which has no effect here; returns the previous one. */
    public boolean pushAllowFds(boolean allowFds) {
        boolean before = mAllowFds;
        mAllowFds = allowFds;
        return before;
    }

    /** Returns a copy of all bytes written. */
    public byte[] marshall() {
        return Arrays.copyOf(mData.array(), mData.position());
    }

    public void writeInt(int value) {
        space(Integer.BYTES).putInt(value);
    }

    public void writeLong(long value) {
        space(Long.BYTES).putLong(value);
    }

    public void writeFloat(float value) {
        space(Float.BYTES).putFloat(value);
    }

    public void writeDouble(double value) {
        space(Double.BYTES).putDouble(value);
    }

    public void writeString(String value) {
        writeByteArray(value == null ? null : value.getBytes(StandardCharsets.UTF_8));
    }

    public void writeByteArray(byte[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            space(values.length).put(values);
        }
    }

    public void writeIntArray(int[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            Arrays.stream(values).forEach(this::writeInt);
        }
    }

    public void writeLongArray(long[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            Arrays.stream(values).forEach(this::writeLong);
        }
    }

    public void writeFloatArray(float[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            for (float value : values) {
                writeFloat(value);
            }
        }
    }

    public void writeDoubleArray(double[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            Arrays.stream(values).forEach(this::writeDouble);
        }
    }

    public void writeStringArray(String[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            Arrays.stream(values).forEach(this::writeString);
        }
    }

    private boolean writeLength(int length) {
        writeInt(length);
        return length != NULL_LENGTH;
    }

    // Returns the buffer at its current position, with space for `bytes` more bytes.
    private ByteBuffer space(int bytes) {
        int needed = mData.position() + bytes;
        if (needed > mData.capacity()) {
            int position = mData.position();
            byte[] larger = Arrays.copyOf(mData.array(), Math.max(needed, mData.capacity() * 2));
            mData = ByteBuffer.wrap(larger).order(ByteOrder.LITTLE_ENDIAN).position(position);
        }
        return mData;
    }
}
