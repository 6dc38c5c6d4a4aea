package com.orlu.orlu3rdalgoservice.tool.request;

import static org.junit.Assert.assertEquals;

import android.graphics.Rect;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;

import org.junit.Test;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.lang.reflect.Array;
import java.util.HexFormat;
import java.util.StringJoiner;

/** Tests the conversion of typed JSON values to Java objects, at and beyond the bounds of each type. */
public final class TagValuesTest {
    private static String text(Object value) {
        if (value instanceof byte[] bytes) {
            return "byte[] " + HexFormat.of().formatHex(bytes);
        }
        if (value.getClass().isArray()) {
            StringJoiner parts = new StringJoiner(" ", value.getClass().getSimpleName() + " ", "");
            for (int i = 0; i < Array.getLength(value); ++i) {
                parts.add(element(Array.get(value, i)));
            }
            return parts.toString();
        }
        if (value instanceof Rect) {
            return "Rect " + element(value);
        }
        return value.getClass().getSimpleName() + " " + value;
    }

    private static String element(Object value) {
        if (value instanceof Face face) {
            return element(face.getBounds()) + "/" + face.getScore();
        }
        if (value instanceof MeteringRectangle region) {
            return element(region.getRect()) + "/" + region.getMeteringWeight();
        }
        return value instanceof Rect rect
                ? "%d,%d,%d,%d".formatted(rect.left, rect.top, rect.right, rect.bottom) : "" + value;
    }

    // Converts a row to JSON: quotes the names, and replaces single quotes by double quotes.
    private static String quoted(String json) {
        return json.replace('\'', '"').replaceAll("([{ ])([a-z0-9]+):", "$1\"$2\":");
    }

    private static String read(String json) {
        try {
            return text(TagValues.ofTyped(Json.parse("f", 1, quoted(json))));
        } catch (MistakeException e) {
            return "refused";
        }
    }

    @Test
    public void readsEachType() {
        String[][] rows = {
            {"{int: 2147483647}", "Integer 2147483647"}, {"{int: -2147483648}", "Integer -2147483648"},
            {"{int: 2147483648}", "refused"}, {"{int: -2147483649}", "refused"}, {"{int: 1.5}", "refused"},
            {"{int: '1'}", "refused"}, {"{int: true}", "refused"},
            {"{long: 9223372036854775807}", "Long 9223372036854775807"},
            {"{long: 9223372036854775808}", "refused"},
            {"{float: 0.1}", "Float 0.1"}, {"{float: 'NaN'}", "Float NaN"},
            {"{float: '-Infinity'}", "Float -Infinity"}, {"{float: 'nan'}", "refused"},
            {"{double: 0.1}", "Double 0.1"}, {"{double: 'Infinity'}", "Double Infinity"},
            {"{boolean: false}", "Boolean false"}, {"{boolean: 0}", "refused"},
            {"{string: 'x'}", "String x"}, {"{string: 1}", "refused"},
            {"{ints: [1, -2]}", "int[] 1 -2"}, {"{ints: [2147483648]}", "refused"}, {"{ints: []}", "int[] "},
            {"{ints: {fill: 7, count: 3}}", "int[] 7 7 7"}, {"{ints: {fill: 7, count: 65537}}", "refused"},
            {"{longs: [4294967296]}", "long[] 4294967296"}, {"{floats: [0.5, 'NaN']}", "float[] 0.5 NaN"},
            {"{doubles: [0.5]}", "double[] 0.5"}, {"{strings: ['a', 'b']}", "String[] a b"},
            {"{bytes: '0aFF'}", "byte[] 0aff"}, {"{bytes: '0a0'}", "refused"}, {"{bytes: ''}", "byte[] "},
            {"{bytes: {int8: [255, -128]}}", "byte[] ff80"}, {"{bytes: {int8: 256}}", "refused"},
            {"{bytes: {int8: -129}}", "refused"}, {"{bytes: {int16: [65535, -2]}}", "byte[] fffffeff"},
            {"{bytes: {int16: 65536}}", "refused"}, {"{bytes: {int32: 258}}", "byte[] 02010000"},
            {"{bytes: {int64: -1}}", "byte[] ffffffffffffffff"}, {"{bytes: {float: 1}}", "byte[] 0000803f"},
            {"{bytes: {double: 1}}", "byte[] 000000000000f03f"}, {"{bytes: {text: 'ab'}}", "byte[] 6162"},
            {"{bytes: {size: 4, parts: [{at: 2, int16: 258}]}}", "byte[] 00000201"},
            {"{bytes: {size: 4, parts: [{at: 3, int16: 258}]}}", "refused"},
            {"{bytes: {size: 4, parts: [{at: 5, hex: ''}]}}", "refused"},
            {"{bytes: {size: 3, parts: [{at: 0, hex: '0102'}, {at: 1, hex: '03'}]}}", "byte[] 010300"},
            {"{bytes: {size: 1048577}}", "refused"}, {"{bytes: {size: 4, parts: [{hex: '01'}]}}", "refused"},
            {"{bytes: {int8: 1, int16: 1}}", "refused"}, {"{bytes: {int9: 1}}", "refused"},
            {"{int: 1, long: 1}", "refused"}, {"{word: 1}", "refused"}, {"5", "refused"},
            {"{rect: [1, 2, 3, 4]}", "Rect 1,2,3,4"},
            {"{rect: {left: 1, top: 2, right: 3, bottom: 4}}", "Rect 1,2,3,4"},
            // A face without a score gets 100; a region without a weight gets 1000.
            {"{faces: [[1, 2, 3, 4], {left: 1, top: 2, right: 3, bottom: 4, score: 7}]}",
                "Face[] 1,2,3,4/100 1,2,3,4/7"},
            {"{faces: [{left: 1, top: 2, right: 3, bottom: 4, score: 101}]}", "refused"},
            {"{regions: [{left: 1, top: 2, right: 3, bottom: 4}]}", "MeteringRectangle[] 1,2,3,4/1000"},
            {"{regions: [{left: 1, top: 2, right: 3, bottom: 4, weight: 1001}]}", "refused"},
            {"{location: {latitude: 91, longitude: 0}}", "refused"},
            {"{location: {latitude: 0, longitude: -181}}", "refused"},
            {"{location: {latitude: 0}}", "refused"}, {"{rect: [1, 2, 3]}", "refused"},
            {"{rational: [1]}", "refused"}, {"{faces: [{left: 1}]}", "refused"},
        };
        for (String[] row : rows) {
            assertEquals(row[0], row[1], read(row[0]));
        }
    }
}
