package com.orlu.orlu3rdalgoservice.tool.request;

import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonNull;
import com.google.gson.JsonObject;
import com.google.gson.JsonPrimitive;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;

import java.math.BigDecimal;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** JSON with places as a tree without, and the other way round. */
public final class JsonTree {
    private JsonTree() {
    }

    /** Reads a file that is no request. What is wrong with it as JSON is a MistakeException. */
    public static JsonElement read(Path path) throws MistakeException {
        Mistakes mistakes = new Mistakes(path.toString());
        JsonValue root = JsonFileReader.read(path, mistakes);
        mistakes.throwFirst();
        return withoutPlaces(root);
    }

    private static JsonElement withoutPlaces(JsonValue value) {
        if (value.members() != null) {
            JsonObject object = new JsonObject();
            value.members().forEach((name, member) -> object.add(name, withoutPlaces(member.value())));
            return object;
        }
        if (value.content() instanceof List<?> values) {
            JsonArray array = new JsonArray();
            values.forEach(element -> array.add(withoutPlaces((JsonValue) element)));
            return array;
        }
        if (value.content() instanceof BigDecimal number) {
            return new JsonPrimitive(number);
        }
        if (value.content() instanceof Boolean truth) {
            return new JsonPrimitive(truth);
        }
        return value.content() instanceof String text ? new JsonPrimitive(text) : JsonNull.INSTANCE;
    }

    /** A value that comes from no file, or one whose lines nobody counts. */
    static JsonValue withPlaces(JsonElement element) {
        Object content = null;
        if (element instanceof JsonObject object) {
            Map<String, JsonValue.Member> members = new LinkedHashMap<>();
            object.entrySet().forEach(entry -> members.put(
                    entry.getKey(), new JsonValue.Member(0, 0, withPlaces(entry.getValue()))));
            content = members;
        } else if (element instanceof JsonArray array) {
            List<JsonValue> values = new ArrayList<>();
            array.forEach(value -> values.add(withPlaces(value)));
            content = values;
        } else if (element instanceof JsonPrimitive primitive) {
            content = primitive.isString() ? primitive.getAsString()
                    : primitive.isBoolean() ? (Object) primitive.getAsBoolean() : primitive.getAsBigDecimal();
        }
        return new JsonValue(content, 0, 0);
    }
}
