package com.orlu.orlu3rdalgoservice.tool.request;

import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonNull;
import com.google.gson.JsonObject;
import com.google.gson.JsonPrimitive;
import com.google.gson.stream.JsonReader;
import com.google.gson.stream.JsonToken;
import com.google.gson.stream.MalformedJsonException;

import java.io.EOFException;
import java.io.IOException;
import java.io.Reader;
import java.math.BigDecimal;
import java.nio.charset.CharacterCodingException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * Reads a whole JSON file. What Gson's own tree reader lets pass, such as a field given twice, is an error.
 */
public final class StrictJson {
    private static final Pattern PLACE = Pattern.compile("line (\\d+) column (\\d+)");
    // Deep enough for any request; deeper, and the recursion below would end in a stack overflow.
    private static final int MAX_DEPTH = 64;
    private static final int MAX_EXPONENT = 400;

    private final String mFile;
    private final JsonReader mReader;

    private StrictJson(String file, Reader reader) {
        mFile = file;
        mReader = new JsonReader(reader);
    }

    /** Reads the file. All that can be wrong with it as JSON is a RequestFileException. */
    public static JsonElement read(Path path) throws RequestFileException {
        String file = path.toString();
        try (Reader reader = Files.newBufferedReader(path, StandardCharsets.UTF_8)) {
            return new StrictJson(file, reader).document();
        } catch (NoSuchFileException e) {
            throw new RequestFileException(file, "", "no such file");
        } catch (MalformedJsonException e) {
            throw new RequestFileException(file, "", "not JSON" + placeOf(e));
        } catch (EOFException e) {
            throw new RequestFileException(file, "", "not JSON: it ends too early");
        } catch (CharacterCodingException e) {
            throw new RequestFileException(file, "", "not UTF-8 text");
        } catch (IOException e) {
            throw new RequestFileException(file, "", "can't be read");
        }
    }

    private static String placeOf(MalformedJsonException e) {
        Matcher place = PLACE.matcher(String.valueOf(e.getMessage()));
        return place.find() ? ", line " + place.group(1) + " column " + place.group(2) : "";
    }

    private JsonElement document() throws IOException, RequestFileException {
        JsonElement root = element(0);
        if (mReader.peek() != JsonToken.END_DOCUMENT) {
            throw new RequestFileException(mFile, "", "more text after the end of the JSON value");
        }
        return root;
    }

    private JsonElement element(int depth) throws IOException, RequestFileException {
        if (depth > MAX_DEPTH) {
            throw new RequestFileException(mFile, "", "nested deeper than " + MAX_DEPTH + " levels");
        }
        return switch (mReader.peek()) {
            case BEGIN_OBJECT -> object(depth);
            case BEGIN_ARRAY -> array(depth);
            case STRING -> new JsonPrimitive(mReader.nextString());
            case NUMBER -> new JsonPrimitive(number(mReader.nextString()));
            case BOOLEAN -> new JsonPrimitive(mReader.nextBoolean());
            default -> {
                mReader.nextNull();
                yield JsonNull.INSTANCE;
            }
        };
    }

    private JsonObject object(int depth) throws IOException, RequestFileException {
        JsonObject object = new JsonObject();
        mReader.beginObject();
        while (mReader.hasNext()) {
            String name = mReader.nextName();
            if (object.has(name)) {
                throw new RequestFileException(mFile, "", "the field \"" + name + "\" is given twice");
            }
            object.add(name, element(depth + 1));
        }
        mReader.endObject();
        return object;
    }

    private JsonArray array(int depth) throws IOException, RequestFileException {
        JsonArray array = new JsonArray();
        mReader.beginArray();
        while (mReader.hasNext()) {
            array.add(element(depth + 1));
        }
        mReader.endArray();
        return array;
    }

    // The text's own precision is kept: "1.0" stays a number with a fraction, and no long loses digits.
    private BigDecimal number(String text) throws RequestFileException {
        try {
            BigDecimal value = new BigDecimal(text);
            if (Math.abs((long) value.precision() - value.scale()) <= MAX_EXPONENT) {
                return value;
            }
        } catch (NumberFormatException e) {
            // An exponent that no BigDecimal holds.
        }
        throw new RequestFileException(mFile, "", "the number " + text + " is out of every range");
    }
}
