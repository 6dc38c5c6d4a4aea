package android.os;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import java.util.function.IntFunction;

/**
 * A flat, little-endian record of values: what was written in order is read in order. Arrays carry their
 * length. Reading past the end throws IllegalStateException.
 */
public final class Parcel {
    private static final int NULL_LENGTH = -1;
    private static final int FIRST_CAPACITY = 256;

    private ByteBuffer mData = ByteBuffer.allocate(FIRST_CAPACITY).order(ByteOrder.LITTLE_ENDIAN);
    private int mSize;
    private boolean mAllowFds = true;

    private Parcel() {
    }

    public static Parcel obtain() {
        return new Parcel();
    }

    /** Empties the parcel. */
    public void recycle() {
        mData = ByteBuffer.allocate(FIRST_CAPACITY).order(ByteOrder.LITTLE_ENDIAN);
        mSize = 0;
    }

    /** Says whether descriptors may be written; returns what was so before. */
    public boolean pushAllowFds(boolean allowFds) {
        boolean before = mAllowFds;
        mAllowFds = allowFds;
        return before;
    }

    /** A copy of all bytes written. */
    public byte[] marshall() {
        return Arrays.copyOf(mData.array(), mSize);
    }

    /** Replaces the contents by bytes that {@link #marshall} returned; the position is behind them. */
    public void unmarshall(byte[] data, int offset, int length) {
        recycle();
        space(length).put(data, offset, length);
        written();
    }

    /** Moves to {@code position}, from 0 to {@link #dataSize}. */
    public void setDataPosition(int position) {
        if (position < 0 || position > mSize) {
            throw new IllegalArgumentException("Position " + position + " in " + mSize + " bytes");
        }
        mData.position(position);
    }

    public int dataSize() {
        return mSize;
    }

    public void writeInt(int value) {
        space(Integer.BYTES).putInt(value);
        written();
    }

    public int readInt() {
        return next(Integer.BYTES).getInt();
    }

    public void writeLong(long value) {
        space(Long.BYTES).putLong(value);
        written();
    }

    public long readLong() {
        return next(Long.BYTES).getLong();
    }

    public void writeFloat(float value) {
        space(Float.BYTES).putFloat(value);
        written();
    }

    public float readFloat() {
        return next(Float.BYTES).getFloat();
    }

    public void writeDouble(double value) {
        space(Double.BYTES).putDouble(value);
        written();
    }

    public double readDouble() {
        return next(Double.BYTES).getDouble();
    }

    public void writeString(String value) {
        writeByteArray(value == null ? null : value.getBytes(StandardCharsets.UTF_8));
    }

    public String readString() {
        byte[] bytes = createByteArray();
        return bytes == null ? null : new String(bytes, StandardCharsets.UTF_8);
    }

    public void writeByteArray(byte[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            space(values.length).put(values);
            written();
        }
    }

    public byte[] createByteArray() {
        return create(byte[]::new, (array, i) -> array[i] = next(Byte.BYTES).get());
    }

    public void writeIntArray(int[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            Arrays.stream(values).forEach(this::writeInt);
        }
    }

    public int[] createIntArray() {
        return create(int[]::new, (array, i) -> array[i] = readInt());
    }

    public void writeLongArray(long[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            Arrays.stream(values).forEach(this::writeLong);
        }
    }

    public long[] createLongArray() {
        return create(long[]::new, (array, i) -> array[i] = readLong());
    }

    public void writeFloatArray(float[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            for (float value : values) {
                writeFloat(value);
            }
        }
    }

    public float[] createFloatArray() {
        return create(float[]::new, (array, i) -> array[i] = readFloat());
    }

    public void writeDoubleArray(double[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            Arrays.stream(values).forEach(this::writeDouble);
        }
    }

    public double[] createDoubleArray() {
        return create(double[]::new, (array, i) -> array[i] = readDouble());
    }

    public void writeStringArray(String[] values) {
        if (writeLength(values == null ? NULL_LENGTH : values.length) && values != null) {
            Arrays.stream(values).forEach(this::writeString);
        }
    }

    public String[] createStringArray() {
        return create(String[]::new, (array, i) -> array[i] = readString());
    }

    private interface ElementReader<A> {
        void read(A array, int index);
    }

    /** An array's length, which is never more than the bytes that follow. */
    public int readLength() {
        int length = readInt();
        if (length < 0 || length > mSize - mData.position()) {
            throw new IllegalStateException("Length " + length + " in a parcel of " + mSize + " bytes");
        }
        return length;
    }

    private <A> A create(IntFunction<A> maker, ElementReader<A> reader) {
        int position = mData.position();
        if (readInt() == NULL_LENGTH) {
            return null;
        }
        mData.position(position);
        int length = readLength();
        A array = maker.apply(length);
        for (int i = 0; i < length; i++) {
            reader.read(array, i);
        }
        return array;
    }

    private boolean writeLength(int length) {
        writeInt(length);
        return length != NULL_LENGTH;
    }

    // The buffer at its position, where so many bytes are left to read.
    private ByteBuffer next(int bytes) {
        if (bytes > mSize - mData.position()) {
            throw new IllegalStateException("The parcel ends after " + mSize + " bytes");
        }
        return mData;
    }

    // The buffer at its position, with space for so many bytes more.
    private ByteBuffer space(int bytes) {
        int needed = mData.position() + bytes;
        if (needed > mData.capacity()) {
            int position = mData.position();
            byte[] larger = Arrays.copyOf(mData.array(), Math.max(needed, mData.capacity() * 2));
            mData = ByteBuffer.wrap(larger).order(ByteOrder.LITTLE_ENDIAN).position(position);
        }
        return mData;
    }

    private void written() {
        mSize = Math.max(mSize, mData.position());
    }
}
