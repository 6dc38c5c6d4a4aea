package com.orlu.orlu3rdalgoservice.tool.tags;

import android.graphics.Rect;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;
import android.location.Location;
import android.util.Rational;

import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonNull;
import com.google.gson.JsonObject;
import com.google.gson.JsonPrimitive;

import java.lang.reflect.Array;
import java.util.HexFormat;

/** Writes a value of a store in the form that a request file has for it. */
public final class HeldValue {
    private HeldValue() {
    }

    /** Numbers that JSON has no form for (NaN, infinity) and objects of other classes become texts. */
    public static JsonElement json(Object value) {
        if (value == null) {
            return JsonNull.INSTANCE;
        }
        if (value instanceof byte[] bytes) {
            return new JsonPrimitive(HexFormat.of().formatHex(bytes));
        }
        if (value.getClass().isArray()) {
            JsonArray array = new JsonArray();
            for (int i = 0; i < Array.getLength(value); ++i) {
                array.add(json(Array.get(value, i)));
            }
            return array;
        }
        if (value instanceof Number number && Double.isFinite(number.doubleValue())) {
            return new JsonPrimitive(number);
        }
        return value instanceof Boolean truth ? new JsonPrimitive(truth) : object(value);
    }

    private static JsonElement object(Object value) {
        if (value instanceof Rect rect) {
            return list(rect.left, rect.top, rect.right, rect.bottom);
        }
        if (value instanceof Face face) {
            return sides(face.getBounds(), "score", face.getScore());
        }
        if (value instanceof MeteringRectangle region) {
            return sides(region.getRect(), "weight", region.getMeteringWeight());
        }
        if (value instanceof Location location) {
            JsonObject place = new JsonObject();
            place.addProperty("latitude", location.getLatitude());
            place.addProperty("longitude", location.getLongitude());
            if (location.hasAltitude()) {
                place.addProperty("altitude", location.getAltitude());
            }
            place.addProperty("time", location.getTime());
            return place;
        }
        return value instanceof Rational rational
                ? list(rational.getNumerator(), rational.getDenominator())
                : new JsonPrimitive(value.toString());
    }

    private static JsonArray list(int... numbers) {
        JsonArray array = new JsonArray();
        for (int number : numbers) {
            array.add(number);
        }
        return array;
    }

    private static JsonObject sides(Rect rect, String name, int number) {
        JsonObject object = new JsonObject();
        object.addProperty("left", rect.left);
        object.addProperty("top", rect.top);
        object.addProperty("right", rect.right);
        object.addProperty("bottom", rect.bottom);
        object.addProperty(name, number);
        return object;
    }
}
