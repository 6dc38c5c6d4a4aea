package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.charset.StandardCharsets;
import java.util.HexFormat;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * Builds the bytes of a binary record from hex text, packed values ({"int32": [...]}), or an object with a
 * size and parts at offsets ({"size": 2080, "parts": [{"at": 2076, "int32": [3]}]}). Little-endian, like the
 * phone.
 */
final class ByteRecords {
    private static final int LARGEST = 1 << 20;
    private static final List<String> PACKINGS =
            List.of("hex", "text", "int8", "int16", "int32", "int64", "float", "double");

    private ByteRecords() {
    }

    static byte[] read(Json field) throws MistakeException {
        if (field.isString()) {
            return hex(field);
        }
        if (!field.isObject()) {
            throw field.needs("bytes: hex text or an object such as {\"int32\": [1, 2]}");
        }
        return field.members().containsKey("size") ? sized(field) : packed(field, field.members());
    }

    private static byte[] sized(Json field) throws MistakeException {
        Json members = field.allowing("size", "parts");
        byte[] record = new byte[members.require("size").integer(0, LARGEST)];
        if (members.has("parts")) {
            for (Json part : members.get("parts").list()) {
                part.mistakes().attempt(() -> place(record, part));
            }
        }
        return record;
    }

    private static void place(byte[] record, Json part) throws MistakeException {
        Map<String, Json> members = new LinkedHashMap<>(part.members());
        Json at = members.remove("at");
        if (at == null) {
            throw part.error("missing field at, the offset in the record");
        }
        int offset = at.integer(0, record.length);
        byte[] bytes = packed(part, members);
        if (bytes.length > record.length - offset) {
            throw part.error(
                    bytes.length + " bytes at " + offset + " exceed the record of " + record.length + " bytes");
        }
        System.arraycopy(bytes, 0, record, offset, bytes.length);
    }

    private static byte[] packed(Json field, Map<String, Json> members)
            throws MistakeException {
        if (members.size() != 1 || !PACKINGS.containsAll(members.keySet())) {
            String word = members.isEmpty() ? "" : members.keySet().iterator().next();
            throw field.error("expected exactly one of " + String.join(", ", PACKINGS) + ", found "
                    + (members.size() == 1 ? Json.quoted(word) : members.size() + " fields")
                    + NearestWord.question(word, PACKINGS));
        }
        String packing = members.keySet().iterator().next();
        Json values = members.get(packing);
        return switch (packing) {
            case "hex" -> hex(values);
            case "text" -> values.string().getBytes(StandardCharsets.UTF_8);
            default -> numbers(packing, values.isNumber() ? List.of(values) : values.list());
        };
    }

    private static byte[] numbers(String packing, List<Json> values) {
        ByteBuffer buffer = ByteBuffer.allocate(values.size() * Double.BYTES).order(ByteOrder.LITTLE_ENDIAN);
        for (Json value : values) {
            value.mistakes().attempt(() -> put(packing, value, buffer));
        }
        byte[] bytes = new byte[buffer.position()];
        buffer.flip().get(bytes);
        return bytes;
    }

    private static void put(String packing, Json value, ByteBuffer buffer)
            throws MistakeException {
        switch (packing) {
            case "int8" -> buffer.put((byte) value.integer(Byte.MIN_VALUE, 255));
            case "int16" -> buffer.putShort((short) value.integer(Short.MIN_VALUE, 65535));
            case "int32" -> buffer.putInt(value.integer(Integer.MIN_VALUE, Integer.MAX_VALUE));
            case "int64" -> buffer.putLong(value.integer(Long.MIN_VALUE, Long.MAX_VALUE));
            case "float" -> buffer.putFloat(value.single());
            default -> buffer.putDouble(value.real());
        }
    }

    private static byte[] hex(Json field) throws MistakeException {
        try {
            return HexFormat.of().parseHex(field.string().replace(" ", ""));
        } catch (IllegalArgumentException e) {
            throw field.needs("pairs of hex digits");
        }
    }
}
