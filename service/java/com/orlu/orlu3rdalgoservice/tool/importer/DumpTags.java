package com.orlu.orlu3rdalgoservice.tool.importer;

import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.tags.Enumerations;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;

import java.io.ByteArrayOutputStream;
import java.math.BigDecimal;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.HexFormat;
import java.util.List;
import java.util.Map;

/**
 * Converts the entries of a dumped metadata buffer to the tags of one frame, and their native types to the
 * tags' Java types.
 */
final class DumpTags {
    private static final int UNSIGNED_MOST = 255;
    private static final String FACE_RECTANGLES = "android.statistics.faceRectangles";
    private static final String FACE_SCORES = "android.statistics.faceScores";
    private static final String GPS_COORDINATES = "android.jpeg.gpsCoordinates";
    private static final String GPS_METHOD = "android.jpeg.gpsProcessingMethod";
    private static final String GPS_TIME = "android.jpeg.gpsTimestamp";
    /** Entries that are parts of a combined tag, and their types. */
    private static final Map<String, String> PARTS = Map.of(FACE_RECTANGLES, "int32", FACE_SCORES, "byte",
            GPS_COORDINATES, "double", GPS_METHOD, "byte", GPS_TIME, "int64");

    private final Notes mNotes;
    private final ImportedFrame mFrame = new ImportedFrame();
    private final Map<String, DumpEntry> mParts = new HashMap<>();

    private DumpTags(Notes notes) {
        mNotes = notes;
    }

    static ImportedFrame of(List<DumpEntry> buffer, Notes notes) {
        DumpTags tags = new DumpTags(notes);
        buffer.forEach(tags::add);
        tags.addFaces();
        tags.addLocation();
        return tags.mFrame;
    }

    private void add(DumpEntry entry) {
        TagType type = TagTable.typeOf(entry.tag());
        String wanted = PARTS.containsKey(entry.tag()) ? PARTS.get(entry.tag()) : layerType(type);
        String problem = null;
        if (wanted == null) {
            problem = "unknown tag " + entry.number();
        } else if (!List.of(wanted.split(" ")).contains(entry.type())) {
            problem = "wrong type: " + entry.type() + " instead of " + wanted.replace(" ", " or ");
        } else {
            problem = entry.incompleteness();
        }
        if (problem != null) {
            mNotes.add(entry.place(), entry.tag() + " dropped; " + problem);
        } else if (PARTS.containsKey(entry.tag())) {
            mParts.put(entry.tag(), entry);
        } else {
            put(entry, entry.tag(), () -> value(type, entry));
        }
    }

    /**
     * Returns the native types that the entry of a tag may have, separated by blanks. `type` is the tag's
     * Java type; null for an unknown tag. Returns null for an unknown tag and for a tag that is combined from
     * several entries.
     */
    private static String layerType(TagType type) {
        return type == null ? null : switch (type) {
            case INT, INT_ARRAY -> "int32 byte";
            case LONG, LONG_ARRAY -> "int64";
            case FLOAT, FLOAT_ARRAY -> "float";
            case DOUBLE, DOUBLE_ARRAY -> "double";
            case STRING, STRING_ARRAY, BYTES -> "byte";
            case RECT, METERING_RECTANGLES -> "int32";
            case RATIONAL -> "rational";
            case FACES, LOCATION -> null;
        };
    }

    private void put(DumpEntry entry, String tag, Mistakes.Reading<Object> value) {
        try {
            mFrame.put(tag, value.read(), entry.place(), mNotes);
        } catch (MistakeException e) {
            mNotes.add(entry.place(), tag + " dropped; " + e.mistake().problem());
        }
    }

    // The exception has no file and line: the note adds them.
    private static MistakeException damaged(String problem) {
        return new MistakeException("", "", problem);
    }

    private static Object value(TagType type, DumpEntry entry) throws MistakeException {
        return switch (type) {
            case INT, LONG, FLOAT, DOUBLE -> number(entry, only(entry));
            case STRING -> text(entry);
            case STRING_ARRAY -> text(entry).split("\0");
            case BYTES -> HexFormat.of().formatHex(bytes(entry));
            case RECT -> {
                int[][] groups = groups(entry, 4);
                if (groups.length > 1) {
                    throw damaged("wrong type: int32[" + entry.count() + "] instead of one rectangle");
                }
                int[] edges = groups[0];
                yield List.of(edges[0], edges[1], edge(edges[0], edges[2]), edge(edges[1], edges[3]));
            }
            case METERING_RECTANGLES -> {
                List<Object> regions = new ArrayList<>();
                for (int[] region : groups(entry, 5)) {
                    Map<String, Object> object = rect(region);
                    object.put("weight", region[4]);
                    regions.add(object);
                }
                yield regions;
            }
            case RATIONAL -> {
                String[] parts = only(entry).split("/");
                yield List.of(integer(entry, parts[0]), integer(entry, parts[1]));
            }
            default -> {
                List<Object> numbers = new ArrayList<>();
                for (String value : entry.values()) {
                    numbers.add(number(entry, value));
                }
                yield numbers;
            }
        };
    }

    private static String only(DumpEntry entry) throws MistakeException {
        if (entry.values().size() != 1) {
            throw damaged("wrong type: " + entry.type() + "[" + entry.count()
                    + "] instead of one value");
        }
        return entry.values().get(0);
    }

    // Converts a printed number, or the known name of a value, to its form in request files. NaN and
    // infinities have C notation in the dump and Java notation in request files.
    private static Object number(DumpEntry entry, String text) throws MistakeException {
        int named = Enumerations.number(entry.tag(), text);
        if (named >= 0) {
            return named;
        }
        if (text.matches("-?(nan|inf)")) {
            return text.endsWith("nan") ? "NaN" : text.replace("inf", "Infinity");
        }
        // The dump prints no exponents.
        if (!text.matches("-?\\d{1,310}(\\.\\d{1,20})?")) {
            throw damaged("neither a number nor a known name: \"" + text + "\"");
        }
        return entry.type().equals("byte") ? (Object) byteOf(entry, text) : new BigDecimal(text);
    }

    private static int integer(DumpEntry entry, String text) throws MistakeException {
        try {
            return Integer.parseInt(text);
        } catch (NumberFormatException e) {
            throw damaged("not of type " + entry.type() + ": " + text);
        }
    }

    // Some dumps print bytes as signed numbers, others as unsigned ones.
    private static int byteOf(DumpEntry entry, String text) throws MistakeException {
        int value = integer(entry, text);
        if (value < Byte.MIN_VALUE || value > UNSIGNED_MOST) {
            throw damaged("not a byte: " + text);
        }
        return value;
    }

    private static int edge(int start, int size) throws MistakeException {
        long edge = (long) start + size;
        if (edge != (int) edge) {
            throw damaged("not an int32: an edge of " + edge);
        }
        return (int) edge;
    }

    private static BigDecimal milliseconds(DumpEntry seconds) throws MistakeException {
        String text = only(seconds);
        if (!text.matches("\\d{1,18}")) {
            throw damaged("not a time in seconds: " + text);
        }
        return new BigDecimal(text).movePointRight(3);
    }

    private static byte[] bytes(DumpEntry entry) throws MistakeException {
        ByteArrayOutputStream bytes = new ByteArrayOutputStream();
        for (String value : entry.values()) {
            bytes.write(byteOf(entry, value));
        }
        return bytes.toByteArray();
    }

    // Removes the zero bytes that terminate most texts.
    private static String text(DumpEntry entry) throws MistakeException {
        return new String(bytes(entry), StandardCharsets.UTF_8).replaceFirst("\0+$", "");
    }

    private static int[][] groups(DumpEntry entry, int size) throws MistakeException {
        if (entry.values().size() % size != 0 || size == 4 && entry.values().isEmpty()) {
            throw damaged("wrong type: int32[" + entry.count() + "] instead of groups of "
                    + size);
        }
        int[][] groups = new int[entry.values().size() / size][size];
        for (int i = 0; i < entry.values().size(); ++i) {
            groups[i / size][i % size] = integer(entry, entry.values().get(i));
        }
        return groups;
    }

    private static Map<String, Object> rect(int[] edges) {
        return JsonWriter.object("left", edges[0], "top", edges[1], "right", edges[2], "bottom", edges[3]);
    }

    // A face is printed as four edges, like a metering region. Only RECT entries have a corner and a size.
    private void addFaces() {
        DumpEntry rectangles = mParts.get(FACE_RECTANGLES);
        DumpEntry scores = mParts.get(FACE_SCORES);
        if (rectangles == null || rectangles.values().isEmpty()) {
            return;
        }
        put(rectangles, "android.statistics.faces", () -> {
            List<Object> faces = new ArrayList<>();
            int[][] edges = groups(rectangles, 4);
            for (int i = 0; i < edges.length; ++i) {
                Map<String, Object> face = rect(edges[i]);
                if (scores != null && i < scores.values().size()) {
                    face.put("score", number(scores, scores.values().get(i)));
                }
                faces.add(face);
            }
            return faces;
        });
    }

    // The time is in seconds in the entry, in milliseconds in a Location.
    private void addLocation() {
        DumpEntry coordinates = mParts.get(GPS_COORDINATES);
        if (coordinates == null) {
            return;
        }
        put(coordinates, "android.jpeg.gpsLocation", () -> {
            List<String> values = coordinates.values();
            if (values.size() != 3) {
                throw damaged("wrong type: double[" + values.size() + "] instead of three values");
            }
            Map<String, Object> location = JsonWriter.object("latitude", number(coordinates, values.get(0)),
                    "longitude", number(coordinates, values.get(1)),
                    "altitude", number(coordinates, values.get(2)));
            if (mParts.containsKey(GPS_METHOD)) {
                location.put("provider", text(mParts.get(GPS_METHOD)));
            }
            if (mParts.containsKey(GPS_TIME)) {
                location.put("time", milliseconds(mParts.get(GPS_TIME)));
            }
            return location;
        });
    }
}
