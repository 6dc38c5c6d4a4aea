package com.orlu.orlu3rdalgoservice.tool.json;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.math.BigDecimal;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Collection;
import java.util.List;
import java.util.Map;
import java.util.TreeSet;

/**
 * A value of a JSON text. The tree is immutable, and each value knows its file, line, column and path.
 *
 * An accessor without a fallback throws a MistakeException ("file:3:7: inputs[0].format: expected text,
 * found 5") if the value has the wrong type. An accessor with a fallback returns the fallback if the member
 * is absent or has the wrong type, and notes a wrong type in mistakes(). The comment of an accessor describes
 * any deviation from these rules. Accessors throw no other exceptions.
 */
public final class Json implements JsonWriter.Source {
    private static final int LONGEST_QUOTE = 60;
    private static final Json NONE =
            new Json(new Mistakes(""), null, "", 0, Spot.NOWHERE, Spot.NOWHERE, Map.of());

    private final Mistakes mMistakes;
    private final Json mParent;
    /** The name of an object's member; null for an element of a list, "" for the root. */
    private final String mName;
    private final int mIndex;
    private final Spot mNameSpot;
    private final Spot mSpot;
    /** A Map of String to Json, a List of Json, a String, BigDecimal or Boolean, or null. */
    private final Object mContent;

    /** A position in a text: its line, and its column in UTF-16 units, both from 1; 0 if unknown. */
    record Spot(int line, int column) {
        static final Spot NOWHERE = new Spot(0, 0);
    }

    Json(Mistakes mistakes, Json parent, String name, int index, Spot nameSpot, Spot spot, Object content) {
        mMistakes = mistakes;
        mParent = parent;
        mName = name;
        mIndex = index;
        mNameSpot = nameSpot;
        mSpot = spot;
        mContent = content;
    }

    /** Reads a file, which may have comments as in Java. Throws the first mistake. */
    public static Json read(Path file) throws MistakeException {
        Mistakes mistakes = new Mistakes(file.toString());
        Json root = read(file, mistakes);
        mistakes.throwFirst();
        return root;
    }

    /** Reads a file and notes its mistakes. Returns null if the file can't be read or parsed. */
    public static Json read(Path file, Mistakes mistakes) {
        return JsonReader.read(file, mistakes);
    }

    /** Reads a text that begins at this line of the file. Throws the first mistake. */
    public static Json parse(String file, int line, String text) throws MistakeException {
        Mistakes mistakes = new Mistakes(file);
        Json root = JsonReader.parse(text, line, mistakes);
        mistakes.throwFirst();
        return root;
    }

    /** Returns the tree of a value that JsonWriter accepts. */
    public static Json of(Object value) {
        return value instanceof Json json ? json
                : JsonReader.parse(JsonWriter.line(value), 0, new Mistakes(""));
    }

    /** Returns an object without members, to use in place of an absent object. */
    public static Json none() {
        return NONE;
    }

    /** The mistakes noted in this tree's file. */
    public Mistakes mistakes() {
        return mMistakes;
    }

    /** The value's line in its file, from 1; 0 if there is no file. */
    public int line() {
        return mSpot.line();
    }

    /** The value's path in the tree, such as inputs[0].format; empty for the root. */
    public String path() {
        if (mParent == null) {
            return mName;
        }
        String before = mParent.path();
        if (mName == null) {
            return before + "[" + mIndex + "]";
        }
        String shown = mName.matches("[$\\w]{1,60}") ? mName : quoted(mName);
        return before.isEmpty() ? shown : before + "." + shown;
    }

    Spot nameSpot() {
        return mNameSpot;
    }

    /** The content: a Map, List, String, BigDecimal or Boolean, or null. */
    @Override
    public Object content() {
        return mContent;
    }

    // Mistakes.

    /** Returns an exception that reports a problem of this value. */
    public MistakeException error(String problem) {
        return new MistakeException(mMistakes.at(mSpot.line(), mSpot.column(), path(), problem, false));
    }

    /** Returns an exception: "expected X, found Y". */
    public MistakeException needs(String what) {
        return error("expected " + what + ", found " + found());
    }

    /** Returns an exception for a text that is not in `names`; its message suggests the nearest name. */
    public MistakeException needsName(String what, Collection<String> names) {
        String hint = isString() ? NearestWord.question((String) mContent, names) : "";
        return error("expected " + what + ", found " + found() + hint);
    }

    /** Notes a warning about this value. */
    public void warn(String problem) {
        mMistakes.add(mMistakes.at(mSpot.line(), mSpot.column(), path(), problem, true));
    }

    /** Returns an exception that reports a problem of a member. */
    public MistakeException error(String member, String problem) {
        return memberOrThis(member).error(problem);
    }

    /** Notes a warning about a member. */
    public void warn(String member, String problem) {
        memberOrThis(member).warn(problem);
    }

    // For an absent member, returns a placeholder at the position of this object.
    private Json memberOrThis(String name) {
        Json member = get(name);
        return member != null ? member : new Json(mMistakes, this, name, 0, mSpot, mSpot, null);
    }

    /** The text of a string, without quotes; any other value as JSON. */
    public String text() {
        return isString() ? (String) mContent : JsonWriter.line(this);
    }

    /** Describes this value, for a message. */
    public String found() {
        if (isObject()) {
            return "an object";
        }
        return isList() ? "a list" : isString() ? quoted(text()) : cut(text());
    }

    /** Returns a text, shortened if it is long. */
    public static String cut(String text) {
        return text.length() <= LONGEST_QUOTE ? text : text.substring(0, LONGEST_QUOTE) + "...";
    }

    /** Returns a text in quotes, shortened if it is long, for a message. */
    public static String quoted(String text) {
        return '"' + cut(text).replace("\\", "\\\\").replace("\"", "\\\"") + '"';
    }

    // Types.

    public boolean isObject() {
        return mContent instanceof Map;
    }

    public boolean isList() {
        return mContent instanceof List;
    }

    public boolean isString() {
        return mContent instanceof String;
    }

    public boolean isNumber() {
        return mContent instanceof BigDecimal;
    }

    public boolean isBoolean() {
        return mContent instanceof Boolean;
    }

    public boolean isTrue() {
        return Boolean.TRUE.equals(mContent);
    }

    public boolean isNull() {
        return mContent == null;
    }

    /** Whether this is a number of scale 0, such as 10, but not 10.0 or 1e1. */
    public boolean isWholeNumber() {
        return mContent instanceof BigDecimal number && number.scale() == 0;
    }

    // Values.

    public String string() throws MistakeException {
        if (mContent instanceof String text) {
            return text;
        }
        throw needs("text");
    }

    public boolean bool() throws MistakeException {
        if (mContent instanceof Boolean flag) {
            return flag;
        }
        throw needs("true or false");
    }

    public BigDecimal number() throws MistakeException {
        if (mContent instanceof BigDecimal number) {
            return number;
        }
        throw needs("a number");
    }

    /** A number in a range, both ends included. */
    public double number(double least, double most) throws MistakeException {
        double value = number().doubleValue();
        if (value < least || value > most) {
            throw needs("a number from " + least + " to " + most);
        }
        return value;
    }

    /** A number in the range of a double. */
    public double real() throws MistakeException {
        return number(-Double.MAX_VALUE, Double.MAX_VALUE);
    }

    /** A number in the range of a float, rounded to a float. */
    public float single() throws MistakeException {
        float value = (float) real();
        if (Float.isInfinite(value)) {
            throw needs("a number in the range of a float (up to " + Float.MAX_VALUE + ")");
        }
        return value;
    }

    /** A whole number in a range, both ends included. */
    public long integer(long least, long most) throws MistakeException {
        BigDecimal value = number();
        try {
            long whole = value.longValueExact();
            if (whole >= least && whole <= most) {
                return whole;
            }
        } catch (ArithmeticException e) {
            // A fraction, or too large for a long: the message below covers both.
        }
        throw needs("a whole number from " + least + " to " + most);
    }

    public int integer(int least, int most) throws MistakeException {
        return (int) integer((long) least, (long) most);
    }

    /** The elements of a list. */
    public List<Json> list() throws MistakeException {
        if (!isList()) {
            throw needs("a list");
        }
        return elements();
    }

    /** The elements of a list with exactly `count` elements. */
    public List<Json> list(int count) throws MistakeException {
        List<Json> elements = list();
        if (elements.size() != count) {
            throw error("expected a list of " + count + " elements, found " + elements.size());
        }
        return elements;
    }

    /** The elements of a list; none if this is not a list. */
    @SuppressWarnings("unchecked")
    public List<Json> elements() {
        return isList() ? (List<Json>) mContent : List.of();
    }

    /** The texts of a list. Notes an element of another type as a mistake and returns "" in its place. */
    public List<String> strings() throws MistakeException {
        List<String> strings = new ArrayList<>();
        for (Json element : list()) {
            strings.add(mMistakes.attempt(element::string, ""));
        }
        return strings;
    }

    // Members.

    /** The members of an object, in the file's order. */
    public Map<String, Json> members() throws MistakeException {
        if (!isObject()) {
            throw needs("an object");
        }
        return entries();
    }

    /** The members of an object; none if this is not an object. */
    @SuppressWarnings("unchecked")
    public Map<String, Json> entries() {
        return isObject() ? (Map<String, Json>) mContent : Map.of();
    }

    /** Notes a mistake for each member of this object whose name is not in `names`. Returns this object. */
    public Json allowing(String... names) throws MistakeException {
        List<String> allowed = List.of(names);
        members().forEach((name, member) -> {
            if (!allowed.contains(name)) {
                String problem = "unknown field; expected one of " + String.join(", ", new TreeSet<>(allowed))
                        + NearestWord.question(name, allowed);
                Spot spot = member.mNameSpot;
                mMistakes.add(mMistakes.at(spot.line(), spot.column(), member.path(), problem, false));
            }
        });
        return this;
    }

    /** Whether this is an object with a member of this name, even if its value is null. */
    public boolean has(String name) {
        return get(name) != null;
    }

    /** A member; null if it is absent. */
    public Json get(String name) {
        return entries().get(name);
    }

    /** A member; an object without members if it is absent. */
    public Json at(String name) {
        return entries().getOrDefault(name, NONE);
    }

    /** The elements of a member that is a list; none if it is absent. */
    public List<Json> list(String name) throws MistakeException {
        return has(name) ? get(name).list() : List.of();
    }

    public Json require(String name) throws MistakeException {
        Json member = members().get(name);
        if (member == null) {
            throw error("missing field " + name);
        }
        return member;
    }

    private <T> T optional(String name, Mistakes.Reading<T> reading, T fallback) {
        return has(name) ? mMistakes.attempt(reading, fallback) : fallback;
    }

    public String string(String name, String fallback) {
        return optional(name, () -> get(name).string(), fallback);
    }

    public boolean bool(String name, boolean fallback) {
        return optional(name, () -> get(name).bool(), fallback);
    }

    public int integer(String name, int least, int most, int fallback) {
        return optional(name, () -> get(name).integer(least, most), fallback);
    }

    public long integer(String name, long least, long most, long fallback) {
        return optional(name, () -> get(name).integer(least, most), fallback);
    }

    public double number(String name, double least, double most, double fallback) {
        return optional(name, () -> get(name).number(least, most), fallback);
    }

    /** A member that is an object; the fallback is an object without members. See allowing() for `names`. */
    public Json object(String name, String... names) {
        return optional(name, () -> get(name).allowing(names), NONE);
    }
}
