package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.util.Map;

/**
 * Turns a field of "captureResult" or "composition" into the Java object that stands for it on the device.
 */
final class TagValues {
    private TagValues() {
    }

    /** The value of a tag of the camera's report: the table of tags decides the type. */
    static Object ofTag(String tag, Json field, int frame) throws MistakeException {
        TagType type = TagTable.typeOf(tag);
        if (type == null) {
            throw field.error("no such tag" + NearestWord.question(tag, TagTable.names()));
        }
        return typed(type, field, new ValueReader(frame));
    }

    /**
     * The value of a composition's key: its tag's type, an explicit one, or the one that the JSON suggests.
     */
    static Object ofKey(String key, Json field, int frame) throws MistakeException {
        ValueReader reader = new ValueReader(frame);
        Object explicit = explicit(field, reader);
        if (explicit != null) {
            return explicit;
        }
        TagType type = TagTable.typeOf(key);
        return type != null ? typed(type, field, reader) : plain(field);
    }

    private static Object typed(TagType type, Json field, ValueReader reader)
            throws MistakeException {
        return switch (type) {
            case INT -> reader.integer(field);
            case LONG -> reader.longInteger(field);
            case FLOAT -> reader.single(field);
            case DOUBLE -> reader.number(field);
            case STRING -> field.string();
            case BYTES -> ByteRecords.read(field);
            case INT_ARRAY -> reader.integers(field);
            case LONG_ARRAY -> reader.longs(field);
            case FLOAT_ARRAY -> reader.floats(field);
            case DOUBLE_ARRAY -> reader.doubles(field);
            case STRING_ARRAY -> reader.strings(field);
            case RECT -> reader.rect(field);
            case FACES -> reader.faces(field);
            case METERING_RECTANGLES -> reader.meteringRectangles(field);
            case LOCATION -> reader.location(field);
            case RATIONAL -> reader.rational(field);
        };
    }

    // {"long": 5} and the like; null when the field is not of this form.
    static Object explicit(Json field, ValueReader reader) throws MistakeException {
        if (!field.isObject() || field.members().size() != 1) {
            return null;
        }
        Map.Entry<String, Json> only = field.members().entrySet().iterator().next();
        Json value = only.getValue();
        return switch (only.getKey()) {
            case "int" -> reader.integer(value);
            case "long" -> reader.longInteger(value);
            case "float" -> reader.single(value);
            case "double" -> reader.number(value);
            case "boolean" -> value.bool();
            case "string" -> value.string();
            case "bytes" -> ByteRecords.read(value);
            case "ints" -> reader.integers(value);
            case "longs" -> reader.longs(value);
            case "floats" -> reader.floats(value);
            case "doubles" -> reader.doubles(value);
            case "strings" -> reader.strings(value);
            case "rect" -> reader.rect(value);
            case "faces" -> reader.faces(value);
            case "regions" -> reader.meteringRectangles(value);
            case "location" -> reader.location(value);
            case "rational" -> reader.rational(value);
            default -> null;
        };
    }

    private static Object plain(Json field) throws MistakeException {
        if (field.isWholeNumber()) {
            long value = field.integer(Long.MIN_VALUE, Long.MAX_VALUE);
            return value == (int) value ? (Object) (int) value : (Object) value;
        }
        if (field.isNumber()) {
            return field.real();
        }
        if (field.isString()) {
            return field.string();
        }
        if (field.isBoolean()) {
            return field.bool();
        }
        if (field.isList()) {
            return plainList(field);
        }
        throw field.needs("a value, or one with its type such as {\"long\": 5}");
    }

    private static Object plainList(Json field) throws MistakeException {
        ValueReader reader = new ValueReader(0);
        boolean strings = false;
        boolean fractions = false;
        for (Json element : field.list()) {
            strings |= element.isString();
            fractions |= element.isNumber() && !element.isWholeNumber();
        }
        if (strings) {
            return reader.strings(field);
        }
        return fractions ? reader.doubles(field) : reader.integers(field);
    }
}
