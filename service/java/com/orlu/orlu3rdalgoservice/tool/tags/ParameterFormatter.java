package com.orlu.orlu3rdalgoservice.tool.tags;

import java.math.BigInteger;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.HexFormat;
import java.util.List;
import java.util.function.IntFunction;
import java.util.stream.IntStream;

/** Formats a parameter's value. Bytes whose size does not match the type are shown in hex. */
public final class ParameterFormatter {
    private static final int HEX_BYTES = 16;
    private static final int LIST_ELEMENTS = 24;
    private static final int SHORTEST_RUN = 3;
    private static final int SMALLEST_FLOAT_BITS = 0x30000000;
    private static final int MOST_FACES = 10;
    private static final int FACES_SIZE = 204;
    private static final int FACE_OUTLINE_SIZE = 10736;
    private static final int EXIF_SIZE = 152;
    private static final int REFOCUS_PACK_SIZE = 120;
    private static final int PHASE_DETECTION_SIZE = 2068;

    private final ByteBuffer mBytes;
    private final int mSize;

    private ParameterFormatter(byte[] bytes) {
        mBytes = ByteBuffer.wrap(bytes).order(ByteOrder.LITTLE_ENDIAN);
        mSize = bytes.length;
    }

    public static String format(ParameterType type, byte[] bytes) {
        ParameterFormatter formatter = new ParameterFormatter(bytes);
        return formatter.fits(type) ? formatter.value(type) : formatter.hex();
    }

    /**
     * Returns the value for programs: a number, a boolean, a string or a list of numbers. If the value has no
     * such form, returns the same text as format().
     */
    public static Object json(ParameterType type, byte[] bytes) {
        ParameterFormatter formatter = new ParameterFormatter(bytes);
        Object value = formatter.fits(type) ? formatter.plain(type) : null;
        return value != null ? ValueFormatter.json(value) : format(type, bytes);
    }

    // Returns the value as a Java object; null for types that have only a text form.
    private Object plain(ParameterType type) {
        return switch (type) {
            case INT, COUNT -> intAt(0);
            case LONG -> mBytes.getLong(0);
            case UNSIGNED_LONG -> new BigInteger(value(type));
            case FLOAT -> floatAt(0);
            case BOOL -> mBytes.get(0) != 0;
            case INTS, RECT, CROP -> IntStream.range(0, mSize / 4).map(i -> intAt(4 * i)).toArray();
            case LONGS -> IntStream.range(0, mSize / 8).mapToLong(i -> mBytes.getLong(8 * i)).toArray();
            case DOUBLES -> IntStream.range(0, mSize / 8).mapToDouble(i -> mBytes.getDouble(8 * i)).toArray();
            case FLOATS -> floats();
            case TEXT -> text();
            default -> null;
        };
    }

    private float[] floats() {
        float[] values = new float[mSize / 4];
        mBytes.asFloatBuffer().get(values);
        return values;
    }

    private boolean fits(ParameterType type) {
        return switch (type) {
            case INT, FLOAT, MILLISECONDS -> mSize == 4;
            case LONG, UNSIGNED_LONG -> mSize == 8;
            case BOOL -> mSize == 1;
            case INTS, FLOATS, COUNT -> mSize % 4 == 0 && mSize > 0;
            case LONGS, DOUBLES, BITS -> mSize % 8 == 0;
            case RECT, CROP -> mSize == 16;
            case SENSOR_CROP -> mSize == 20;
            case FACES -> mSize == FACES_SIZE;
            case FACE_OUTLINE -> mSize == FACE_OUTLINE_SIZE;
            case EXIF -> mSize == EXIF_SIZE;
            case REFOCUS_PACK -> mSize == REFOCUS_PACK_SIZE;
            case PHASE_DETECTION -> mSize == PHASE_DETECTION_SIZE;
            case TEXT, BYTES, UNKNOWN -> true;
        };
    }

    private String value(ParameterType type) {
        return switch (type) {
            case INT -> Integer.toString(intAt(0));
            case LONG -> Long.toString(mBytes.getLong(0));
            case UNSIGNED_LONG -> Long.toUnsignedString(mBytes.getLong(0));
            case FLOAT -> number(floatAt(0));
            case BOOL -> mBytes.get(0) == 0 ? "false" : "true";
            case INTS -> list(mSize / 4, i -> Integer.toString(intAt(4 * i)));
            case LONGS -> list(mSize / 8, i -> Long.toString(mBytes.getLong(8 * i)));
            case FLOATS -> list(mSize / 4, i -> number(floatAt(4 * i)));
            case BITS -> list(mSize / 8, i -> "0x" + Long.toHexString(mBytes.getLong(8 * i)));
            case DOUBLES -> list(mSize / 8, i -> number(mBytes.getDouble(8 * i)));
            case TEXT -> '"' + text() + '"';
            case MILLISECONDS -> milliseconds();
            case COUNT -> Integer.toString(intAt(0));
            case RECT -> rect(0);
            case CROP -> "left %d top %d width %d height %d".formatted(
                    intAt(0), intAt(4), intAt(8), intAt(12));
            case SENSOR_CROP -> "left %d right %d top %d bottom %d flag %d".formatted(
                    intAt(0), intAt(4), intAt(8), intAt(12), mBytes.get(16));
            case FACES -> faces();
            case FACE_OUTLINE -> faceOutline();
            case EXIF -> exif();
            case REFOCUS_PACK -> "point %d, %d f-number %s film size %d".formatted(
                    intAt(92), intAt(96), number(intAt(100) / 100f), intAt(116));
            case PHASE_DETECTION -> phaseDetection();
            case BYTES -> hex();
            case UNKNOWN -> hex() + guess();
        };
    }

    private int intAt(int offset) {
        return mBytes.getInt(offset);
    }

    private float floatAt(int offset) {
        return mBytes.getFloat(offset);
    }

    // Formats an int or a float; only the bits show which. Read as an int, the bits of a plausible float are
    // a time of more than nine days, so a shorter time is an int. The largest and the smallest int are ints,
    // too: they represent times out of range.
    private String milliseconds() {
        int bits = intAt(0);
        boolean isSaturated = bits == Integer.MAX_VALUE || bits == Integer.MIN_VALUE;
        boolean isInt = isSaturated || Math.abs((long) bits) < SMALLEST_FLOAT_BITS;
        return isInt ? Integer.toString(bits) : number(floatAt(0));
    }

    // Formats a whole number without ".0": 2 for 2.0.
    private static String number(float value) {
        return trimmed(Float.toString(value));
    }

    private static String number(double value) {
        return trimmed(Double.toString(value));
    }

    private static String trimmed(String number) {
        return number.endsWith(".0") ? number.substring(0, number.length() - 2) : number;
    }

    private static String list(int count, IntFunction<String> element) {
        int last = count;
        while (last > 1 && element.apply(last - 1).equals(element.apply(last - 2))) {
            --last;
        }
        if (count - last + 1 < SHORTEST_RUN) {
            last = count;
        }
        List<String> parts = new ArrayList<>();
        for (int i = 0; i < Math.min(last, LIST_ELEMENTS); ++i) {
            parts.add(element.apply(i));
        }
        if (last > LIST_ELEMENTS) {
            return "[" + String.join(", ", parts) + ", ... " + count + " in all]";
        }
        return "[" + String.join(", ", parts) + (count > last ? " x " + (count - last + 1) : "") + "]";
    }

    private String text() {
        int end = 0;
        while (end < mSize && mBytes.get(end) != 0) {
            ++end;
        }
        return new String(mBytes.array(), 0, end, StandardCharsets.UTF_8);
    }

    private String rect(int offset) {
        return "(%d, %d)-(%d, %d)".formatted(
                intAt(offset), intAt(offset + 4), intAt(offset + 8), intAt(offset + 12));
    }

    private String faces() {
        int count = intAt(0);
        StringBuilder text = new StringBuilder(count == 1 ? "1 face" : count + " faces");
        for (int i = 0; i < Math.min(count, MOST_FACES); ++i) {
            text.append(i == 0 ? ": " : ", ").append(rect(4 + 16 * i));
            text.append(" turned ").append(intAt(164 + 4 * i));
        }
        return text.toString();
    }

    private String faceOutline() {
        return "%d faces, first point (%d, %d), pose (%s, %s, %s), rect %s".formatted(
                intAt(0), intAt(4), intAt(8), number(floatAt(9608)), number(floatAt(9612)),
                number(floatAt(9616)), rect(10536));
    }

    private String exif() {
        return "exposure " + mBytes.getLong(0) + " ns" + ", ISO " + optional(8, 12)
                + ", aperture " + number(floatAt(16)) + ", sensitivity " + intAt(20)
                + ", zoom " + number(floatAt(24)) + ", focal length " + number(floatAt(36))
                + " mm, 35 mm equivalent "
                + (intAt(32) == 0 ? "none" : number(floatAt(28)))
                + ", flash mode " + intAt(40) + ", flash state " + optional(132, 44)
                + ", AWB mode " + intAt(48)
                + ", scene mode " + intAt(52) + ", AE mode " + intAt(56) + ", AE compensation " + intAt(60)
                + " steps of " + intAt(136) + "/" + intAt(140) + ", filter " + intAt(64) + " intensity "
                + number(floatAt(68)) + " mask " + intAt(72) + ", timestamp " + mBytes.getLong(80)
                + ", location "
                + (intAt(128) == 0 ? "none" : location());
    }

    private String optional(int offset, int present) {
        return intAt(present) == 0 ? "none" : Integer.toString(intAt(offset));
    }

    private String location() {
        return number(mBytes.getDouble(88)) + ", " + number(mBytes.getDouble(96)) + ", altitude "
                + (intAt(120) == 0 ? "none" : number(mBytes.getDouble(104)))
                + ", time " + mBytes.getLong(112);
    }

    private String phaseDetection() {
        return "header [%d, %d, %d, %d], %d pairs, first (%d, %d)".formatted(
                intAt(0), intAt(4), intAt(8), intAt(12), intAt(16), intAt(20), intAt(24));
    }

    private String guess() {
        return switch (mSize) {
            case 4 -> " (as int " + intAt(0) + ", as float " + number(floatAt(0)) + ")";
            case 8 -> " (as long " + mBytes.getLong(0) + ", as double " + number(mBytes.getDouble(0)) + ")";
            default -> "";
        };
    }

    private String hex() {
        String hex = HexFormat.of().formatHex(mBytes.array(), 0, Math.min(mSize, HEX_BYTES));
        return mSize <= HEX_BYTES ? hex : hex + "... (" + mSize + " bytes)";
    }
}
