package com.orlu.orlu3rdalgoservice.tool.request;

import android.graphics.Rect;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.util.Rational;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.lang.reflect.Array;
import java.math.BigDecimal;
import java.util.Collections;
import java.util.List;

/**
 * Reads JSON values as the Java types of metadata. A single number may be a counter over the frames:
 * {"first": 100, "step": 33}. A list of numbers may be one repeated value: {"fill": 1.0, "count": 884}.
 */
final class ValueReader {
    private static final int LARGEST_RUN = 1 << 16;
    private static final List<String> NO_JSON_NUMBERS = List.of("NaN", "Infinity", "-Infinity");
    private static final int SURE_FACE = 100;

    private final int mFrame;

    /** Reads values of this frame; counters start at frame 0. */
    ValueReader(int frame) {
        mFrame = frame;
    }

    int integer(Json field) throws MistakeException {
        return Math.toIntExact(whole(field, Integer.MIN_VALUE, Integer.MAX_VALUE));
    }

    long longInteger(Json field) throws MistakeException {
        return whole(field, Long.MIN_VALUE, Long.MAX_VALUE);
    }

    private long whole(Json field, long least, long most) throws MistakeException {
        if (!field.isObject()) {
            return field.integer(least, most);
        }
        Json counter = field.allowing("first", "step");
        BigDecimal value = BigDecimal.valueOf(counter.require("first").integer(least, most)).add(
                BigDecimal.valueOf(counter.require("step").integer(least, most)).multiply(frame()));
        if (value.compareTo(BigDecimal.valueOf(least)) < 0 || value.compareTo(BigDecimal.valueOf(most)) > 0) {
            throw field.error("frame " + mFrame + " gets " + value + ", out of range");
        }
        return value.longValueExact();
    }

    private BigDecimal frame() {
        return BigDecimal.valueOf(mFrame);
    }

    double number(Json field) throws MistakeException {
        if (!field.isObject()) {
            return real(field);
        }
        Json counter = field.allowing("first", "step");
        return counter.require("first").number().add(
                counter.require("step").number().multiply(frame())).doubleValue();
    }

    float single(Json field) throws MistakeException {
        return field.isObject() ? (float) number(field) : realSingle(field);
    }

    // JSON has no NaN and no infinities, so strings represent them.
    private static boolean isSpecial(Json field) throws MistakeException {
        return field.isString() && NO_JSON_NUMBERS.contains(field.string());
    }

    private static double real(Json field) throws MistakeException {
        return isSpecial(field) ? Double.parseDouble(field.string()) : field.real();
    }

    private static float realSingle(Json field) throws MistakeException {
        return isSpecial(field) ? Float.parseFloat(field.string()) : field.single();
    }

    private interface ElementReader {
        Object read(Json element) throws MistakeException;
    }

    // Notes mistakes in elements; a wrong element remains 0 or null.
    private static Object array(Class<?> type, List<Json> elements, ElementReader reader) {
        Object values = Array.newInstance(type, elements.size());
        for (int i = 0; i < elements.size(); ++i) {
            int index = i;
            Json element = elements.get(i);
            element.mistakes().attempt(() -> Array.set(values, index, reader.read(element)));
        }
        return values;
    }

    /** An int[]. */
    Object integers(Json field) throws MistakeException {
        return array(int.class, elements(field),
                element -> element.integer(Integer.MIN_VALUE, Integer.MAX_VALUE));
    }

    /** A long[]. */
    Object longs(Json field) throws MistakeException {
        return array(long.class, elements(field), element -> element.integer(Long.MIN_VALUE, Long.MAX_VALUE));
    }

    /** A double[]. */
    Object doubles(Json field) throws MistakeException {
        return array(double.class, elements(field), ValueReader::real);
    }

    /** A float[]. */
    Object floats(Json field) throws MistakeException {
        return array(float.class, elements(field), ValueReader::realSingle);
    }

    private List<Json> elements(Json field) throws MistakeException {
        if (!field.isObject()) {
            return field.list();
        }
        Json run = field.allowing("fill", "count");
        return Collections.nCopies(run.require("count").integer(0, LARGEST_RUN), run.require("fill"));
    }

    String[] strings(Json field) throws MistakeException {
        return field.strings().toArray(new String[0]);
    }

    Rect rect(Json field) throws MistakeException {
        if (field.isList()) {
            List<Json> edges = field.list(4);
            return new Rect(integer(edges.get(0)), integer(edges.get(1)), integer(edges.get(2)),
                    integer(edges.get(3)));
        }
        return sides(field.allowing("left", "top", "right", "bottom"));
    }

    private Rect sides(Json members) throws MistakeException {
        return new Rect(integer(members.require("left")), integer(members.require("top")),
                integer(members.require("right")), integer(members.require("bottom")));
    }

    /** A Face[]. */
    Object faces(Json field) throws MistakeException {
        return array(Face.class, field.list(), this::face);
    }

    private Face face(Json field) throws MistakeException {
        if (field.isList()) {
            return new Face(rect(field), SURE_FACE);
        }
        Json members = field.allowing("left", "top", "right", "bottom", "score");
        return new Face(sides(members), members.integer("score", 1, 100, SURE_FACE));
    }

    /** A MeteringRectangle[]. */
    Object meteringRectangles(Json field) throws MistakeException {
        return array(MeteringRectangle.class, field.list(), this::meteringRectangle);
    }

    private MeteringRectangle meteringRectangle(Json field) throws MistakeException {
        Json members = field.allowing("left", "top", "right", "bottom", "weight");
        return new MeteringRectangle(sides(members), members.integer("weight", 0, 1000, 1000));
    }

    Location location(Json field) throws MistakeException {
        Json members = field.allowing("provider", "latitude", "longitude", "altitude", "time");
        Location location = new Location(members.string("provider", "gps"));
        location.setLatitude(members.require("latitude").number(-90, 90));
        location.setLongitude(members.require("longitude").number(-180, 180));
        if (members.has("altitude")) {
            location.setAltitude(members.get("altitude").number().doubleValue());
        }
        location.setTime(members.integer("time", 0, Long.MAX_VALUE, 0L));
        return location;
    }

    Rational rational(Json field) throws MistakeException {
        if (field.isList()) {
            List<Json> parts = field.list(2);
            return new Rational(integer(parts.get(0)), integer(parts.get(1)));
        }
        Json members = field.allowing("numerator", "denominator");
        return new Rational(integer(members.require("numerator")), integer(members.require("denominator")));
    }
}
