package com.orlu.orlu3rdalgoservice.record;

import android.graphics.Rect;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.util.Rational;

import java.util.Arrays;
import java.util.HexFormat;
import java.util.Map;

/** Converts a stored value for a JSON writer, to its form in a request file. */
public final class HeldValue {
    private HeldValue() {
    }

    /** Objects of other classes become texts. */
    public static Object json(Object value) {
        if (value instanceof byte[] bytes) {
            return HexFormat.of().formatHex(bytes);
        }
        if (value instanceof Object[] objects) {
            return Arrays.stream(objects).map(HeldValue::json).toList();
        }
        if (value == null || value instanceof Number || value instanceof Boolean) {
            return value;
        }
        return value.getClass().isArray() ? value : object(value);
    }

    private static Object object(Object value) {
        if (value instanceof Rect rect) {
            return new int[] {rect.left, rect.top, rect.right, rect.bottom};
        }
        if (value instanceof Face face) {
            return sides(face.getBounds(), "score", face.getScore());
        }
        if (value instanceof MeteringRectangle region) {
            return sides(region.getRect(), "weight", region.getMeteringWeight());
        }
        if (value instanceof Location location) {
            Map<String, Object> place = JsonWriter.object(
                    "latitude", location.getLatitude(), "longitude", location.getLongitude());
            if (location.hasAltitude()) {
                place.put("altitude", location.getAltitude());
            }
            place.put("time", location.getTime());
            return place;
        }
        return value instanceof Rational rational
                ? new int[] {rational.getNumerator(), rational.getDenominator()} : value.toString();
    }

    private static Map<String, Object> sides(Rect rect, String name, int number) {
        return JsonWriter.object("left", rect.left, "top", rect.top, "right", rect.right, "bottom",
                rect.bottom,
                name, number);
    }
}
