package com.orlu.orlu3rdalgoservice.tool.request;

import com.fasterxml.jackson.core.JsonFactory;
import com.fasterxml.jackson.core.JsonFactoryBuilder;
import com.fasterxml.jackson.core.JsonParseException;
import com.fasterxml.jackson.core.JsonParser;
import com.fasterxml.jackson.core.JsonToken;
import com.fasterxml.jackson.core.json.JsonReadFeature;

import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

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
    /** So many slips are passed over. */
    private static final int MOST_MENDS = 100;

    private final Mistakes mMistakes;
    private final MendedText mText;
    private final JsonParser mParser;
    private int mValues;

    private JsonFileReader(MendedText text, Mistakes mistakes) throws IOException {
        // Texts in single quotes are read, and are mistakes.
        JsonFactory factory = new JsonFactoryBuilder().enable(JsonReadFeature.ALLOW_JAVA_COMMENTS)
                .enable(JsonReadFeature.ALLOW_SINGLE_QUOTES)
                .disable(JsonFactory.Feature.INTERN_FIELD_NAMES).build();
        mMistakes = mistakes;
        mText = text;
        mParser = factory.createParser(text.text());
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
            return text == null ? null : new JsonFileReader(new MendedText(text), mistakes).document();
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
                add(tokenStart(), "not JSON: more text after the end of the value");
                return null;
            }
            return mValues <= MOST_VALUES ? root : null;
        } catch (JsonParseException e) {
            // With the slip mended, the mistakes behind it are found too.
            SyntaxHint hint = SyntaxHint.of(e, mText.text());
            add(hint.at(), "not JSON: " + hint.problem());
            if (hint.mend() == null || mText.mends() == MOST_MENDS) {
                return null;
            }
            mText.mend(hint.mend());
            return new JsonFileReader(mText, mMistakes).document();
        }
    }

    private void add(long at, String problem) {
        MendedText.Position position = mText.position(at);
        mMistakes.add(position.line(), position.column(), "", problem);
    }

    // The offset of the current token.
    private long tokenStart() {
        return mParser.getTokenLocation().getCharOffset();
    }

    // Of a name or a text.
    private void needDoubleQuotes(long at) {
        if (mText.text().charAt((int) at) == '\'') {
            add(at, "not JSON: unexpected '''; texts need double quotes");
        }
    }

    // The parser is at the value's first token, and then at its last one.
    private JsonValue value(int depth) throws IOException {
        long at = tokenStart();
        Object content = null;
        if (++mValues == MOST_VALUES + 1) {
            add(at, "needs at most " + MOST_VALUES + " values, found more");
        } else if (depth > MAX_DEPTH) {
            add(at, "needs at most " + MAX_DEPTH + " levels of objects and lists, found more");
            mParser.skipChildren();
        } else {
            content = content(depth);
        }
        MendedText.Position position = mText.position(at);
        return new JsonValue(content, position.line(), position.column());
    }

    private Object content(int depth) throws IOException {
        return switch (mParser.currentToken()) {
            case START_OBJECT -> object(depth);
            case START_ARRAY -> array(depth);
            case VALUE_STRING -> string();
            case VALUE_NUMBER_INT, VALUE_NUMBER_FLOAT -> number();
            case VALUE_TRUE -> true;
            case VALUE_FALSE -> false;
            default -> null;
        };
    }

    private String string() throws IOException {
        needDoubleQuotes(tokenStart());
        return mParser.getText();
    }

    private Map<String, JsonValue.Member> object(int depth) throws IOException {
        Map<String, JsonValue.Member> members = new LinkedHashMap<>();
        while (mValues <= MOST_VALUES && mParser.nextToken() != JsonToken.END_OBJECT) {
            String name = mParser.currentName();
            long at = tokenStart();
            needDoubleQuotes(at);
            mParser.nextToken();
            JsonValue.Member first = members.get(name);
            if (first != null) {
                add(at, "the field " + JsonField.quoted(name) + " is given twice, first at line "
                        + first.line() + " column " + first.column());
            }
            JsonValue value = value(depth + 1);
            MendedText.Position position = mText.position(at);
            members.putIfAbsent(name, new JsonValue.Member(position.line(), position.column(), value));
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
        add(tokenStart(), "needs a number that some type holds, found " + JsonField.cut(text));
        return BigDecimal.ZERO;
    }
}
