package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;

import java.util.ArrayList;
import java.util.HexFormat;
import java.util.List;

/**
 * One line of an events file. The file is untrusted: for an absent, null or invalid field, the getters return
 * "", 0, false, or an empty list or array.
 */
public record Event(Json fields) {
    /** The names of callbacks. */
    public static final String SHOT = "shotCb";
    public static final String LIGHT_STREAM = "lightStreamCb";
    private static final double NANOSECONDS_PER_MILLISECOND = 1e6;
    private static final String HANDLE = "0x[0-9a-fA-F]{1,16}";
    private static final String HEX = "([0-9a-fA-F]{2})*";

    /** "begin", "end", "table" and so on. */
    public String kind() {
        return text("event");
    }

    /** The operation of a begin or end event. */
    public String operation() {
        return text("op");
    }

    /** Whether this event begins a callback that reports a finished request. */
    public boolean isShot() {
        return text("name").equals(SHOT);
    }

    /** Whether this event begins a callback with a light-stream event. */
    public boolean isLightStream() {
        return text("name").equals(LIGHT_STREAM);
    }

    /** Nanoseconds on the clock of System.nanoTime(). */
    public long time() {
        return number("t");
    }

    /** The duration of an end event's operation. */
    public double milliseconds() {
        return number("ns") / NANOSECONDS_PER_MILLISECOND;
    }

    public boolean has(String name) {
        return fields.has(name) && !fields.get(name).isNull();
    }

    /** Returns a field as text. Converts a number or boolean to text. */
    public String text(String name) {
        Json field = fields.get(name);
        return field == null || field.isNull() || field.isList() || field.isObject() ? "" : field.text();
    }

    /** Returns a field as a number. Accepts a handle in hexadecimal, such as "0x7f10". */
    public long number(String name) {
        Json field = fields.get(name);
        if (field != null && field.isString() && field.text().matches(HANDLE)) {
            return Long.parseUnsignedLong(field.text().substring(2), 16);
        }
        return (long) real(name);
    }

    public double real(String name) {
        Json field = fields.get(name);
        return field != null && field.isNumber() ? Double.parseDouble(field.text()) : 0;
    }

    public boolean flag(String name) {
        return text(name).equals("true");
    }

    public byte[] bytes(String name) {
        String text = text(name);
        return text.matches(HEX) ? HexFormat.of().parseHex(text) : new byte[0];
    }

    public List<String> texts(String name) {
        List<String> texts = new ArrayList<>();
        for (Json element : elements(name)) {
            if (element.isString()) {
                texts.add(element.text());
            }
        }
        return texts;
    }

    public List<Json> elements(String name) {
        return fields.at(name).elements();
    }
}
