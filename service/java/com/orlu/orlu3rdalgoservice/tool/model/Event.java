package com.orlu.orlu3rdalgoservice.tool.model;

import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

import java.util.ArrayList;
import java.util.HexFormat;
import java.util.List;

/** One line of the events. A field that is absent or null reads as "", 0 or an empty list. */
public record Event(JsonObject fields) {
    private static final double NANOSECONDS_PER_MILLISECOND = 1e6;
    private static final List<String> NUMBERS =
            List.of("t", "tid", "pid", "n", "of", "ns", "reqId", "nativeReq", "index", "size", "frame");
    private static final List<String> TEXTS =
            List.of("event", "op", "thread", "at", "image", "file", "crc", "section", "key");
    private static final List<String> LISTS = List.of("algoList", "from", "missing");

    /** "begin", "end", "table" and so on. */
    public String kind() {
        return text("event");
    }

    /** The operation of a begin or an end. */
    public String operation() {
        return text("op");
    }

    /** Nanoseconds on the clock that System.nanoTime() has. */
    public long time() {
        return number("t");
    }

    /** How long the operation of an end took. */
    public double milliseconds() {
        return number("ns") / NANOSECONDS_PER_MILLISECOND;
    }

    /** Whether the fields have their forms; when not, the line is damaged, and reading the field throws. */
    public boolean isWhole() {
        try {
            NUMBERS.forEach(this::number);
            TEXTS.forEach(this::text);
            LISTS.forEach(this::texts);
            bytes("bytes");
            if (kind().equals("end")) {
                number("result");
            }
            return true;
        } catch (IllegalArgumentException | IllegalStateException | UnsupportedOperationException
                | ClassCastException e) {
            // What the library of JSON throws where a value is of another kind.
            return false;
        }
    }

    public boolean has(String name) {
        JsonElement field = fields.get(name);
        return field != null && !field.isJsonNull();
    }

    public String text(String name) {
        return has(name) ? fields.get(name).getAsString() : "";
    }

    /** A number, or a handle in hexadecimal. */
    public long number(String name) {
        String text = text(name);
        if (text.startsWith("0x")) {
            return Long.parseUnsignedLong(text.substring(2), 16);
        }
        return text.isEmpty() ? 0 : fields.get(name).getAsLong();
    }

    public boolean flag(String name) {
        return has(name) && fields.get(name).getAsBoolean();
    }

    public byte[] bytes(String name) {
        return HexFormat.of().parseHex(text(name));
    }

    public List<String> texts(String name) {
        List<String> texts = new ArrayList<>();
        if (has(name)) {
            fields.getAsJsonArray(name).forEach(element -> texts.add(element.getAsString()));
        }
        return texts;
    }
}
