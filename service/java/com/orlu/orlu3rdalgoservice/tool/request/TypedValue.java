package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

/** A metadata value with its type's name, {"long": 5}, as in recordings. */
public final class TypedValue {
    private TypedValue() {
    }

    /** Whether the value's class has no JSON form; only its text was recorded. */
    public static boolean isOfOtherClass(Json field) {
        return field.has("class");
    }

    /** Returns the value; null for JSON's null. */
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
