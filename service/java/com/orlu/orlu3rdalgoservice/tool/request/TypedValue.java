package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

/** A value of metadata with its type's name, {"long": 5}, as recordings have them. */
public final class TypedValue {
    private TypedValue() {
    }

    /** Whether this is a value of a class without a form of its own; only a text of it was recorded. */
    public static boolean isOfOtherClass(Json field) {
        return field.has("class");
    }

    /** The value; null for JSON's null. */
    public static Object read(Json field) throws MistakeException {
        if (field.isNull()) {
            return null;
        }
        Object value = TagValues.explicit(field, new ValueReader(0));
        field.mistakes().throwFirst();
        if (value == null) {
            throw field.needs("a value with its type such as {\"long\": 5}");
        }
        return value;
    }
}
