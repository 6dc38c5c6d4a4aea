package com.orlu.orlu3rdalgoservice.tool.compare;

import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

import java.util.Objects;

/**
 * Whether two values are equal but for numbers at the same place that differ by no more than a tolerance.
 *
 * @param tolerance 0 when all must be equal
 */
record Closeness(double tolerance) {
    /** Null is close to null alone. */
    boolean isClose(JsonElement one, JsonElement other) {
        if (one == null || other == null) {
            return one == other;
        }
        if (one.isJsonArray() && other.isJsonArray()
                && one.getAsJsonArray().size() == other.getAsJsonArray().size()) {
            for (int i = 0; i < one.getAsJsonArray().size(); ++i) {
                if (!isClose(one.getAsJsonArray().get(i), other.getAsJsonArray().get(i))) {
                    return false;
                }
            }
            return true;
        }
        if (one instanceof JsonObject left && other instanceof JsonObject right
                && left.keySet().equals(right.keySet())) {
            return left.keySet().stream().allMatch(name -> isClose(left.get(name), right.get(name)));
        }
        boolean areNumbers = one.isJsonPrimitive() && other.isJsonPrimitive()
                && one.getAsJsonPrimitive().isNumber() && other.getAsJsonPrimitive().isNumber();
        return Objects.equals(one, other)
                || tolerance > 0 && areNumbers
                && Math.abs(one.getAsDouble() - other.getAsDouble()) <= tolerance;
    }
}
