package com.orlu.orlu3rdalgoservice.tool.request;

import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonObject;
import com.google.gson.JsonPrimitive;

import java.math.BigDecimal;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;

/** A value of a request file together with its place in it, so that every complaint names file and field. */
final class JsonField {
    private static final int LONGEST_QUOTE = 40;

    private final String mFile;
    private final String mPath;
    private final JsonElement mElement;

    JsonField(String file, String path, JsonElement element) {
        mFile = file;
        mPath = path;
        mElement = element;
    }

    /** What is wrong with this field, as an exception to be thrown. */
    RequestFileException error(String problem) {
        return new RequestFileException(mFile, mPath, problem);
    }

    /** "needs X, found Y" for this field. */
    RequestFileException needs(String what) {
        return error("needs " + what + ", found " + quote());
    }

    /** This field as an image's place. */
    ImagePlan.Place place() {
        return new ImagePlan.Place(mFile, mPath);
    }

    private String quote() {
        if (mElement.isJsonObject()) {
            return "an object";
        }
        if (mElement.isJsonArray()) {
            return "a list";
        }
        String text = mElement.toString();
        return text.length() <= LONGEST_QUOTE ? text : text.substring(0, LONGEST_QUOTE) + "...";
    }

    boolean isObject() {
        return mElement.isJsonObject();
    }

    boolean isList() {
        return mElement.isJsonArray();
    }

    boolean isString() {
        return mElement.isJsonPrimitive() && mElement.getAsJsonPrimitive().isString();
    }

    boolean isNumber() {
        return mElement.isJsonPrimitive() && mElement.getAsJsonPrimitive().isNumber();
    }

    boolean isBoolean() {
        return mElement.isJsonPrimitive() && mElement.getAsJsonPrimitive().isBoolean();
    }

    /** Whether this is a number written without a fraction and an exponent. */
    boolean isWholeNumber() {
        return isNumber() && mElement.getAsBigDecimal().scale() == 0;
    }

    /** The members of an object that may only have the fields named. */
    JsonMembers members(String... known) throws RequestFileException {
        Map<String, JsonField> members = anyMembers();
        Set<String> allowed = new TreeSet<>(List.of(known));
        for (Map.Entry<String, JsonField> member : members.entrySet()) {
            if (!allowed.contains(member.getKey())) {
                throw member.getValue().error("unknown field; known here: " + String.join(", ", allowed));
            }
        }
        return new JsonMembers(this, members);
    }

    /** The members of an object of any fields, in the file's order. */
    Map<String, JsonField> anyMembers() throws RequestFileException {
        if (!isObject()) {
            throw needs("an object");
        }
        JsonObject object = mElement.getAsJsonObject();
        Map<String, JsonField> members = new LinkedHashMap<>();
        for (Map.Entry<String, JsonElement> entry : object.entrySet()) {
            members.put(entry.getKey(), child(entry.getKey(), entry.getValue()));
        }
        return members;
    }

    private JsonField child(String name, JsonElement element) {
        String shown = name.matches("\\w+") ? name : "\"" + name + "\"";
        return new JsonField(mFile, mPath.isEmpty() ? shown : mPath + "." + shown, element);
    }

    /** The elements of a list. */
    List<JsonField> list() throws RequestFileException {
        if (!isList()) {
            throw needs("a list");
        }
        JsonArray array = mElement.getAsJsonArray();
        List<JsonField> fields = new ArrayList<>();
        for (int i = 0; i < array.size(); ++i) {
            fields.add(new JsonField(mFile, mPath + "[" + i + "]", array.get(i)));
        }
        return fields;
    }

    /** The elements of a list of exactly so many. */
    List<JsonField> list(int count) throws RequestFileException {
        List<JsonField> fields = list();
        if (fields.size() != count) {
            throw error("needs a list of " + count + ", found " + fields.size() + " elements");
        }
        return fields;
    }

    String string() throws RequestFileException {
        if (!isString()) {
            throw needs("a text");
        }
        return mElement.getAsString();
    }

    List<String> strings() throws RequestFileException {
        List<String> strings = new ArrayList<>();
        for (JsonField field : list()) {
            strings.add(field.string());
        }
        return strings;
    }

    boolean bool() throws RequestFileException {
        if (!isBoolean()) {
            throw needs("true or false");
        }
        return mElement.getAsBoolean();
    }

    BigDecimal number() throws RequestFileException {
        if (!isNumber()) {
            throw needs("a number");
        }
        return ((JsonPrimitive) mElement).getAsBigDecimal();
    }

    /** A number in a range, both ends included. */
    double number(double least, double most) throws RequestFileException {
        double value = number().doubleValue();
        if (value < least || value > most) {
            throw needs("a number from " + least + " to " + most);
        }
        return value;
    }

    /** A whole number in a range, both ends included. */
    long integer(long least, long most) throws RequestFileException {
        BigDecimal value = number();
        try {
            long whole = value.longValueExact();
            if (whole >= least && whole <= most) {
                return whole;
            }
        } catch (ArithmeticException e) {
            // Falls through to the message, with the numbers that are too large.
        }
        throw needs("a whole number from " + least + " to " + most);
    }

    int integer(int least, int most) throws RequestFileException {
        return (int) integer((long) least, (long) most);
    }
}
