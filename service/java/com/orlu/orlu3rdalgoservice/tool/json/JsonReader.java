package com.orlu.orlu3rdalgoservice.tool.json;

import com.fasterxml.jackson.core.JsonFactory;
import com.fasterxml.jackson.core.JsonFactoryBuilder;
import com.fasterxml.jackson.core.JsonLocation;
import com.fasterxml.jackson.core.JsonParser;
import com.fasterxml.jackson.core.JsonProcessingException;
import com.fasterxml.jackson.core.JsonToken;
import com.fasterxml.jackson.core.StreamReadFeature;
import com.fasterxml.jackson.core.io.ContentReference;
import com.fasterxml.jackson.core.io.JsonEOFException;
import com.fasterxml.jackson.core.json.JsonReadFeature;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
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
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;

/** Builds the tree of a JSON text. Limits bound the memory, stack and time that an untrusted text can use. */
final class JsonReader {
    static final int MOST_BYTES = 8 << 20;
    static final int MOST_VALUES = 500_000;
    /** Largest nesting depth of objects and lists. Deeper nesting could overflow the stack. */
    static final int MOST_LEVELS = 64;
    private static final int LONGEST_NUMBER = 400;
    private static final int LARGEST_EXPONENT = 400;

    // Names are not interned: the parser's table of names fails if many hashes collide.
    private static final JsonFactory FACTORY = new JsonFactoryBuilder()
            .enable(JsonReadFeature.ALLOW_JAVA_COMMENTS)
            .disable(StreamReadFeature.INCLUDE_SOURCE_IN_LOCATION)
            .disable(JsonFactory.Feature.CANONICALIZE_FIELD_NAMES)
            .disable(JsonFactory.Feature.INTERN_FIELD_NAMES).build();

    private final Mistakes mMistakes;
    private final JsonParser mParser;
    private final int mFirstLine;
    private int mValues;

    private JsonReader(JsonParser parser, int firstLine, Mistakes mistakes) {
        mParser = parser;
        mFirstLine = firstLine;
        mMistakes = mistakes;
    }

    /** Returns the value in a file. If the file can't be read or parsed, notes a mistake and returns null. */
    static Json read(Path path, Mistakes mistakes) {
        try (InputStream file = Files.newInputStream(path)) {
            boolean isTooLarge = Files.size(path) > MOST_BYTES;
            // A pipe has no size and may never end.
            byte[] bytes = isTooLarge ? new byte[0] : file.readNBytes(MOST_BYTES + 1);
            if (isTooLarge || bytes.length > MOST_BYTES) {
                mistakes.add(0, 0, "", "expected at most " + MOST_BYTES + " bytes, found "
                        + (isTooLarge ? Files.size(path) : "more"));
                return null;
            }
            String text = decoded(bytes, mistakes);
            return text == null ? null : parse(text, 1, mistakes);
        } catch (NoSuchFileException e) {
            mistakes.add(0, 0, "", "no such file" + NearestWord.questionOnFile(path));
        } catch (IOException e) {
            mistakes.add(0, 0, "", "can't be read");
        }
        return null;
    }

    // Removes the byte order mark that some editors write. Returns null if the bytes are not UTF-8.
    private static String decoded(byte[] bytes, Mistakes mistakes) {
        CharBuffer text = CharBuffer.allocate(bytes.length);
        CoderResult result = StandardCharsets.UTF_8.newDecoder().decode(ByteBuffer.wrap(bytes), text, true);
        text.flip();
        if (result.isError()) {
            String before = text.toString();
            int line = 1 + (int) before.chars().filter(c -> c == '\n').count();
            mistakes.add(line, before.length() - before.lastIndexOf('\n'), "",
                    "expected UTF-8, found an invalid byte");
            return null;
        }
        return text.length() > 0 && text.charAt(0) == '\uFEFF' ? text.subSequence(1, text.length()).toString()
                : text.toString();
    }

    /** Returns the value in a text. If the text can't be parsed, notes a mistake and returns null. */
    static Json parse(String text, int firstLine, Mistakes mistakes) {
        try (JsonParser parser = FACTORY.createParser(text)) {
            return new JsonReader(parser, firstLine, mistakes).document();
        } catch (MistakeException e) {
            mistakes.add(e);
        } catch (IOException e) {
            mistakes.add(0, 0, "", "can't be read");
        }
        return null;
    }

    private Json document() throws IOException, MistakeException {
        try {
            if (mParser.nextToken() == null) {
                throw mistake(new Json.Spot(mFirstLine, 1), "not JSON: the file is empty");
            }
            Json root = value(null, "", 0, Json.Spot.NOWHERE, 0);
            if (mParser.nextToken() != null) {
                throw mistake(tokenStart(), "not JSON: more text after the end of the value");
            }
            return root;
        } catch (JsonEOFException e) {
            throw mistake(spot(e.getLocation()), "not JSON: the file ends too early" + unclosed());
        } catch (JsonProcessingException e) {
            // Jackson reports the location after the wrong character. Jackson's message may end with
            // ": enable" and the setting that allows this character.
            Json.Spot next = e.getLocation() == null ? tokenStart() : spot(e.getLocation());
            String message = e.getOriginalMessage().replaceFirst(": enable .*", "");
            throw mistake(new Json.Spot(next.line(), Math.max(1, next.column() - 1)), "not JSON: "
                    + message.substring(0, 1).toLowerCase(Locale.ROOT) + message.substring(1));
        }
    }

    private String unclosed() {
        if (mParser.getParsingContext().inRoot()) {
            return "";
        }
        Json.Spot start = spot(mParser.getParsingContext().startLocation(ContentReference.unknown()));
        return ", within the " + (mParser.getParsingContext().inObject() ? "object" : "list")
                + " that begins at line " + start.line() + " column " + start.column();
    }

    private MistakeException mistake(Json.Spot spot, String problem) {
        return new MistakeException(mMistakes.at(spot.line(), spot.column(), "", problem, false));
    }

    private Json.Spot spot(JsonLocation location) {
        return new Json.Spot(mFirstLine - 1 + location.getLineNr(), location.getColumnNr());
    }

    private Json.Spot tokenStart() {
        return spot(mParser.getTokenLocation());
    }

    // On entry, the parser is at the value's first token; on return, at the value's last token.
    private Json value(Json parent, String name, int index, Json.Spot nameSpot, int level)
            throws IOException, MistakeException {
        Json.Spot spot = tokenStart();
        if (++mValues > MOST_VALUES) {
            throw mistake(spot, "expected at most " + MOST_VALUES + " values, found more");
        }
        if (level > MOST_LEVELS) {
            throw mistake(spot, "expected at most " + MOST_LEVELS + " levels of nesting, found more");
        }
        return switch (mParser.currentToken()) {
            case START_OBJECT -> {
                Map<String, Json> members = new LinkedHashMap<>();
                Json object = new Json(mMistakes, parent, name, index, nameSpot, spot,
                        Collections.unmodifiableMap(members));
                addMembers(object, members, level + 1);
                yield object;
            }
            case START_ARRAY -> {
                List<Json> elements = new ArrayList<>();
                Json list = new Json(mMistakes, parent, name, index, nameSpot, spot,
                        Collections.unmodifiableList(elements));
                while (mParser.nextToken() != JsonToken.END_ARRAY) {
                    elements.add(value(list, null, elements.size(), Json.Spot.NOWHERE, level + 1));
                }
                yield list;
            }
            default -> new Json(mMistakes, parent, name, index, nameSpot, spot, scalar(spot));
        };
    }

    private void addMembers(Json object, Map<String, Json> members, int level)
            throws IOException, MistakeException {
        while (mParser.nextToken() != JsonToken.END_OBJECT) {
            String name = mParser.currentName();
            Json.Spot spot = tokenStart();
            mParser.nextToken();
            Json value = value(object, name, 0, spot, level);
            Json first = members.putIfAbsent(name, value);
            if (first != null) {
                mMistakes.add(spot.line(), spot.column(), "", "the field " + Json.quoted(name)
                        + " is given twice, first at line " + first.nameSpot().line() + " column "
                        + first.nameSpot().column());
            }
        }
    }

    private Object scalar(Json.Spot spot) throws IOException {
        return switch (mParser.currentToken()) {
            case VALUE_STRING -> mParser.getText();
            case VALUE_NUMBER_INT, VALUE_NUMBER_FLOAT -> number(spot, mParser.getText());
            case VALUE_TRUE -> true;
            case VALUE_FALSE -> false;
            default -> null;
        };
    }

    // Returns the exact number: "1.0" keeps its fraction, and a long loses no digits. If the number is out of
    // range, notes a mistake and returns 0.
    private BigDecimal number(Json.Spot spot, String text) {
        if (text.length() <= LONGEST_NUMBER) {
            try {
                BigDecimal value = new BigDecimal(text);
                if (Math.abs((long) value.precision() - value.scale()) <= LARGEST_EXPONENT) {
                    return value;
                }
            } catch (NumberFormatException e) {
                // The exponent is out of range for a BigDecimal.
            }
        }
        mMistakes.add(spot.line(), spot.column(), "",
                "expected a number in the range of a double, found " + Json.cut(text));
        return BigDecimal.ZERO;
    }
}
