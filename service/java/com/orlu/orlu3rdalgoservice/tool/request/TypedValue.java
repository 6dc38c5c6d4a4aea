package com.orlu.orlu3rdalgoservice.tool.request;

import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;

/** A value of metadata with its type's name, {"long": 5}, as recordings have them. */
public final class TypedValue {
    private TypedValue() {
    }

    /** Whether this is a value of a class that has no form, of which only a text was recorded. */
    public static boolean isOfOtherClass(JsonElement element) {
        return element instanceof JsonObject object && object.has("class");
    }

    /** The value; null for JSON's null. The place is the field's in an error. */
    public static Object read(String file, String place, JsonElement element) throws MistakeException {
        if (element.isJsonNull()) {
            return null;
        }
        Mistakes mistakes = new Mistakes(file);
        JsonField field = new JsonField(mistakes, place, JsonTree.withPlaces(element));
        Object value = TagValues.explicit(field, new ValueReader(0));
        mistakes.throwFirst();
        if (value == null) {
            throw field.needs("a value with its type such as {\"long\": 5}");
        }
        return value;
    }
}
