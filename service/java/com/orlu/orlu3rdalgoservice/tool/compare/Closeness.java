package com.orlu.orlu3rdalgoservice.tool.compare;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;

import java.util.List;
import java.util.Map;

/** Compares JSON values. Numbers in them may differ by at most `tolerance`; 0 requires equal texts. */
record Closeness(double tolerance) {
    /** Returns whether the values are close. Null is close only to null. */
    boolean isClose(Json one, Json other) {
        if (one == null || other == null) {
            return one == other;
        }
        if (JsonWriter.line(one).equals(JsonWriter.line(other))) {
            return true;
        }
        if (one.isNumber() && other.isNumber()) {
            double difference = Double.parseDouble(one.text()) - Double.parseDouble(other.text());
            return tolerance > 0 && Math.abs(difference) <= tolerance;
        }
        if (one.isObject() && other.isObject()) {
            Map<String, Json> left = one.entries();
            Map<String, Json> right = other.entries();
            return left.keySet().equals(right.keySet())
                    && left.keySet().stream().allMatch(name -> isClose(left.get(name), right.get(name)));
        }
        List<Json> left = one.elements();
        List<Json> right = other.elements();
        if (!one.isList() || !other.isList() || left.size() != right.size()) {
            return false;
        }
        for (int i = 0; i < left.size(); ++i) {
            if (!isClose(left.get(i), right.get(i))) {
                return false;
            }
        }
        return true;
    }
}
