package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.text.Mistake;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;
import com.orlu.orlu3rdalgoservice.tool.text.Place;

import java.math.BigDecimal;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.TreeSet;

/**
 * A value of a file together with its place in it, so that every complaint names file, line, column and
 * field. What a method can't return is a MistakeException, unless it says that a mistake is only noted.
 */
final class JsonField implements Place {
    private static final int LONGEST_QUOTE = 60;

    private final Mistakes mMistakes;
    private final JsonField mParent;
    /** The name in an object; null in a list. */
    private final String mName;
    private final int mIndex;
    private final JsonValue mValue;

    private JsonField(Mistakes mistakes, JsonField parent, String name, int index, JsonValue value) {
        mMistakes = mistakes;
        mParent = parent;
        mName = name;
        mIndex = index;
        mValue = value;
    }

    /** A whole value, whose path is empty for that of a file. */
    JsonField(Mistakes mistakes, String path, JsonValue value) {
        this(mistakes, null, path, 0, value);
    }

    Mistakes mistakes() {
        return mMistakes;
    }

    JsonValue value() {
        return mValue;
    }

    /** A text without its end when it is long. */
    static String cut(String text) {
        return text.length() <= LONGEST_QUOTE ? text : text.substring(0, LONGEST_QUOTE) + "...";
    }

    static String quoted(String text) {
        return '"' + cut(text).replace("\\", "\\\\").replace("\"", "\\\"") + '"';
    }

    private String path() {
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

    private Mistake mistake(int line, int column, String problem, boolean isWarning) {
        return new Mistake(mMistakes.file(), line, column, path(), problem, isWarning);
    }

    /** What is wrong with this field, as an exception to be thrown. */
    MistakeException error(String problem) {
        return new MistakeException(mistake(mValue.line(), mValue.column(), problem, false));
    }

    /** "needs X, found Y" for this field. */
    MistakeException needs(String what) {
        return error("needs " + what + ", found " + found());
    }

    /** "needs X, found Y" for a text of this field that is none of the names. */
    MistakeException needsName(String what, List<String> names) {
        String hint = isString() ? NearestWord.question((String) mValue.content(), names) : "";
        return error("needs " + what + ", found " + found() + hint);
    }

    /** Notes what seems wrong with this field. */
    void warn(String problem) {
        mMistakes.add(mistake(mValue.line(), mValue.column(), problem, true));
    }

    @Override
    public MistakeException error(String member, String problem) {
        return memberOrThis(member).error(problem);
    }

    @Override
    public void warn(String member, String problem) {
        memberOrThis(member).warn(problem);
    }

    // A member that is not there has the place of the object.
    private JsonField memberOrThis(String name) {
        JsonField member = find(name);
        return member != null ? member : new JsonField(mMistakes, this, name, 0, mValue);
    }

    /** What this field is, for a message. */
    String found() {
        if (isObject()) {
            return "an object";
        }
        if (isList()) {
            return "a list";
        }
        return isString() ? quoted((String) mValue.content()) : cut(String.valueOf(mValue.content()));
    }

    boolean isObject() {
        return mValue.content() instanceof Map;
    }

    boolean isList() {
        return mValue.content() instanceof List;
    }

    boolean isString() {
        return mValue.content() instanceof String;
    }

    boolean isNumber() {
        return mValue.content() instanceof BigDecimal;
    }

    boolean isBoolean() {
        return mValue.content() instanceof Boolean;
    }

    /** Whether this is a number written without a fraction and an exponent. */
    boolean isWholeNumber() {
        return mValue.content() instanceof BigDecimal number && number.scale() == 0;
    }

    /** The members of an object. Those of other names than the ones known here are noted as mistakes. */
    JsonMembers members(String... known) throws MistakeException {
        Map<String, JsonField> members = anyMembers();
        List<String> allowed = List.of(known);
        for (Map.Entry<String, JsonField> member : members.entrySet()) {
            if (!allowed.contains(member.getKey())) {
                JsonValue.Member name = mValue.members().get(member.getKey());
                String problem = "unknown field; known here: " + String.join(", ", new TreeSet<>(allowed))
                        + NearestWord.question(member.getKey(), allowed);
                mMistakes.add(member.getValue().mistake(name.line(), name.column(), problem, false));
            }
        }
        return new JsonMembers(this, members);
    }

    /** The members of an object of any fields, in the file's order. */
    Map<String, JsonField> anyMembers() throws MistakeException {
        if (!isObject()) {
            throw needs("an object");
        }
        Map<String, JsonField> members = new LinkedHashMap<>();
        mValue.members().forEach((name, member) -> members.put(name, child(name, member.value())));
        return members;
    }

    /** The field at a path of members below this one, null when there is none. */
    JsonField find(String... names) {
        JsonField field = this;
        for (String name : names) {
            JsonValue.Member member = field.isObject() ? field.mValue.members().get(name) : null;
            if (member == null) {
                return null;
            }
            field = field.child(name, member.value());
        }
        return field;
    }

    private JsonField child(String name, JsonValue value) {
        return new JsonField(mMistakes, this, name, 0, value);
    }

    /** The elements of a list. */
    List<JsonField> list() throws MistakeException {
        if (!isList()) {
            throw needs("a list");
        }
        return elements();
    }

    /** The same for what is known to be one; no elements where it is none. */
    List<JsonField> elements() {
        List<?> values = isList() ? (List<?>) mValue.content() : List.of();
        List<JsonField> fields = new ArrayList<>();
        for (int i = 0; i < values.size(); ++i) {
            fields.add(new JsonField(mMistakes, this, null, i, (JsonValue) values.get(i)));
        }
        return fields;
    }

    /** The elements of a list of exactly so many. */
    List<JsonField> list(int count) throws MistakeException {
        List<JsonField> fields = list();
        if (fields.size() != count) {
            throw error("needs a list of " + count + ", found " + fields.size() + " elements");
        }
        return fields;
    }

    String string() throws MistakeException {
        if (!isString()) {
            throw needs("a text");
        }
        return (String) mValue.content();
    }

    /** The texts of a list. One that is none is noted as a mistake, and empty here. */
    List<String> strings() throws MistakeException {
        List<String> strings = new ArrayList<>();
        for (JsonField field : list()) {
            strings.add(mMistakes.attempt(field::string, ""));
        }
        return strings;
    }

    boolean bool() throws MistakeException {
        if (!isBoolean()) {
            throw needs("true or false");
        }
        return (Boolean) mValue.content();
    }

    BigDecimal number() throws MistakeException {
        if (!isNumber()) {
            throw needs("a number");
        }
        return (BigDecimal) mValue.content();
    }

    /** A number in a range, both ends included. */
    double number(double least, double most) throws MistakeException {
        double value = number().doubleValue();
        if (value < least || value > most) {
            throw needs("a number from " + least + " to " + most);
        }
        return value;
    }

    /** A number that a double holds. */
    double real() throws MistakeException {
        return number(-Double.MAX_VALUE, Double.MAX_VALUE);
    }

    /** A number that a float holds, rounded to one. */
    float single() throws MistakeException {
        float value = (float) real();
        if (Float.isInfinite(value)) {
            throw needs("a number that a float holds (up to " + Float.MAX_VALUE + ")");
        }
        return value;
    }

    /** A whole number in a range, both ends included. */
    long integer(long least, long most) throws MistakeException {
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

    int integer(int least, int most) throws MistakeException {
        return (int) integer((long) least, (long) most);
    }
}
