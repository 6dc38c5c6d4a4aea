package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;

import com.orlu.orlu3rdalgoservice.record.HeldValue;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.util.Arrays;
import java.util.Map;
import java.util.function.Function;
import java.util.stream.Collectors;

/** Converts a field of "captureResult" or "composition" to the Java object that a device has for the tag. */
final class TagValues {
    /** The types by their names in recordings and typed values. */
    private static final Map<String, TagType> TYPES = Arrays.stream(TagType.values())
            .collect(Collectors.toMap(type -> HeldValue.typeName(type.stored()), Function.identity()));

    private TagValues() {
    }

    /** Returns the value of a capture result's tag. TagTable determines the value's type. */
    static Object ofTag(String tag, Json field, int frame) throws MistakeException {
        TagType type = TagTable.typeOf(tag);
        if (type == null) {
            throw field.error("no such tag" + NearestWord.question(tag, TagTable.names()));
        }
        return typed(type, field, new ValueReader(frame));
    }

    /**
     * Returns the value of a composition's key. The value's type is the one that the field names, else the
     * tag's type in TagTable, else the type that JSON implies.
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

    // Reads a typed value such as {"long": 5}; returns null if the field has another form.
    private static Object explicit(Json field, ValueReader reader) throws MistakeException {
        if (field.entries().size() != 1) {
            return null;
        }
        Map.Entry<String, Json> only = field.entries().entrySet().iterator().next();
        if (only.getKey().equals("boolean")) {
            return only.getValue().bool();
        }
        TagType type = TYPES.get(only.getKey());
        return type == null ? null : typed(type, only.getValue(), reader);
    }

    /** Converts a recorded value, which names its type: {"long": 5}. Returns null for JSON's null. */
    static Object ofTyped(Json field) throws MistakeException {
        if (field.isNull()) {
            return null;
        }
        Object value = explicit(field, new ValueReader(0));
        field.mistakes().throwFirst();
        if (value == null) {
            throw field.needs("a value with its type such as {\"long\": 5}");
        }
        return value;
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
        throw field.needs("a value, or a value with its type such as {\"long\": 5}");
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
