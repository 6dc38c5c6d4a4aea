package com.orlu.orlu3rdalgoservice.tool.request;

import com.fasterxml.jackson.core.JsonFactory;
import com.fasterxml.jackson.core.JsonFactoryBuilder;
import com.fasterxml.jackson.core.JsonLocation;
import com.fasterxml.jackson.core.JsonParseException;
import com.fasterxml.jackson.core.JsonParser;
import com.fasterxml.jackson.core.JsonToken;
import com.fasterxml.jackson.core.json.JsonReadFeature;

import java.io.IOException;
import java.io.InputStream;
import java.math.BigDecimal;
import java.nio.ByteBuffer;
import java.nio.CharBuffer;
import java.nio.charset.CoderResult;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * Reads a whole JSON file with the places of all its values. Comments as in Java are welcome; a field given
 * twice is a mistake. What a file can make this process do is bounded.
 */
final class JsonFileReader {
    private static final int MOST_BYTES = 8 << 20;
    private static final int MOST_VALUES = 500_000;
    // Deep enough for any request; deeper, and the recursion below would end in a stack overflow.
    private static final int MAX_DEPTH = 64;
    private static final int LONGEST_NUMBER = 400;
    private static final int MAX_EXPONENT = 400;
    /** So many commas too many are passed over. */
    private static final int MOST_COMMAS = 100;

    private final Mistakes mMistakes;
    private final String mText;
    private final JsonParser mParser;
    private final int mCommas;
    private int mValues;

    private JsonFileReader(String text, Mistakes mistakes, int commas) throws IOException {
        JsonFactory factory = new JsonFactoryBuilder().enable(JsonReadFeature.ALLOW_JAVA_COMMENTS)
                .disable(JsonFactory.Feature.INTERN_FIELD_NAMES).build();
        mMistakes = mistakes;
        mText = text;
        mCommas = commas;
        mParser = factory.createParser(text);
    }

    /** The file's value; null when it has none, or too much, which is then among the mistakes. */
    static JsonValue read(Path path, Mistakes mistakes) {
        try (InputStream file = Files.newInputStream(path)) {
            boolean isTooLarge = Files.size(path) > MOST_BYTES;
            // A pipe has no size, and may have no end.
            byte[] bytes = isTooLarge ? new byte[0] : file.readNBytes(MOST_BYTES + 1);
            if (isTooLarge || bytes.length > MOST_BYTES) {
                mistakes.add(0, 0, "", "needs at most " + MOST_BYTES + " bytes, found "
                        + (isTooLarge ? Files.size(path) : "more"));
                return null;
            }
            String text = decoded(bytes, mistakes);
            return text == null ? null : new JsonFileReader(text, mistakes, 0).document();
        } catch (NoSuchFileException e) {
            mistakes.add(0, 0, "", "no such file" + NearestWord.questionOnFile(path));
        } catch (IOException e) {
            mistakes.add(0, 0, "", "can't be read");
        }
        return null;
    }

    // The text, without the mark that some editors put before it; null when it is none.
    private static String decoded(byte[] bytes, Mistakes mistakes) {
        CharBuffer text = CharBuffer.allocate(bytes.length);
        CoderResult result = StandardCharsets.UTF_8.newDecoder().decode(ByteBuffer.wrap(bytes), text, true);
        text.flip();
        if (result.isError()) {
            String before = text.toString();
            int line = 1 + (int) before.chars().filter(c -> c == '\n').count();
            mistakes.add(line, before.length() - before.lastIndexOf('\n'), "",
                    "needs UTF-8, found a byte that is none");
            return null;
        }
        return text.length() > 0 && text.charAt(0) == '\uFEFF' ? text.subSequence(1, text.length()).toString()
                : text.toString();
    }

    private JsonValue document() throws IOException {
        try {
            if (mParser.nextToken() == null) {
                mMistakes.add(1, 1, "", "not JSON: the file is empty");
                return null;
            }
            JsonValue root = value(0);
            if (mValues <= MOST_VALUES && mParser.nextToken() != null) {
                add(mParser.getTokenLocation(), "not JSON: more text after the end of the value");
                return null;
            }
            return mValues <= MOST_VALUES ? root : null;
        } catch (JsonParseException e) {
            SyntaxHint hint = SyntaxHint.of(e, mText);
            mMistakes.add(e.getLocation().getLineNr(),
                    Math.max(1, e.getLocation().getColumnNr() - hint.charactersBack()), "",
                    "not JSON: " + hint.problem());
            return hint.comma() < 0 || mCommas == MOST_COMMAS ? null
                    : new JsonFileReader(without(hint.comma()), mMistakes, mCommas + 1).document();
        }
    }

    // A comma too many is the mistake that editing makes most: with a blank for it, everything keeps its
    // place, and the others are found too.
    private String without(int comma) {
        return mText.substring(0, comma) + ' ' + mText.substring(comma + 1);
    }

    private void add(JsonLocation at, String problem) {
        mMistakes.add(at.getLineNr(), at.getColumnNr(), "", problem);
    }

    // The parser is at the value's first token, and then at its last one.
    private JsonValue value(int depth) throws IOException {
        JsonLocation at = mParser.getTokenLocation();
        Object content = null;
        if (++mValues == MOST_VALUES + 1) {
            add(at, "needs at most " + MOST_VALUES + " values, found more");
        } else if (depth > MAX_DEPTH) {
            add(at, "needs at most " + MAX_DEPTH + " levels of objects and lists, found more");
            mParser.skipChildren();
        } else {
            content = content(depth);
        }
        return new JsonValue(content, at.getLineNr(), at.getColumnNr());
    }

    private Object content(int depth) throws IOException {
        return switch (mParser.currentToken()) {
            case START_OBJECT -> object(depth);
            case START_ARRAY -> array(depth);
            case VALUE_STRING -> mParser.getText();
            case VALUE_NUMBER_INT, VALUE_NUMBER_FLOAT -> number();
            case VALUE_TRUE -> true;
            case VALUE_FALSE -> false;
            default -> null;
        };
    }

    private Map<String, JsonValue.Member> object(int depth) throws IOException {
        Map<String, JsonValue.Member> members = new LinkedHashMap<>();
        while (mValues <= MOST_VALUES && mParser.nextToken() != JsonToken.END_OBJECT) {
            String name = mParser.currentName();
            JsonLocation at = mParser.getTokenLocation();
            mParser.nextToken();
            JsonValue.Member first = members.get(name);
            if (first != null) {
                add(at, "the field " + JsonField.quoted(name) + " is given twice, first at line "
                        + first.line() + " column " + first.column());
            }
            JsonValue value = value(depth + 1);
            members.putIfAbsent(name, new JsonValue.Member(at.getLineNr(), at.getColumnNr(), value));
        }
        return members;
    }

    private List<JsonValue> array(int depth) throws IOException {
        List<JsonValue> values = new ArrayList<>();
        while (mValues <= MOST_VALUES && mParser.nextToken() != JsonToken.END_ARRAY) {
            values.add(value(depth + 1));
        }
        return values;
    }

    // The text's own precision is kept: "1.0" stays a number with a fraction, and no long loses digits.
    private BigDecimal number() throws IOException {
        String text = mParser.getText();
        if (text.length() <= LONGEST_NUMBER) {
            try {
                BigDecimal value = new BigDecimal(text);
                if (Math.abs((long) value.precision() - value.scale()) <= MAX_EXPONENT) {
                    return value;
                }
            } catch (NumberFormatException e) {
                // An exponent that no BigDecimal holds.
            }
        }
        add(mParser.getTokenLocation(), "needs a number that some type holds, found " + JsonField.cut(text));
        return BigDecimal.ZERO;
    }
}
