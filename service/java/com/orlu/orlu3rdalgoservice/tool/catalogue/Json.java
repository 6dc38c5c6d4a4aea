package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.fasterxml.jackson.core.JsonFactory;
import com.fasterxml.jackson.core.JsonGenerator;
import com.fasterxml.jackson.core.JsonParser;
import com.fasterxml.jackson.core.JsonToken;
import com.fasterxml.jackson.core.util.DefaultIndenter;
import com.fasterxml.jackson.core.util.DefaultPrettyPrinter;

import java.io.IOException;
import java.io.InputStream;
import java.io.StringWriter;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** JSON as maps, lists, texts, numbers and flags. */
final class Json {
    private static final JsonFactory FACTORY = new JsonFactory()
            .enable(JsonParser.Feature.ALLOW_COMMENTS);

    private Json() {
    }

    static Object read(InputStream from) throws IOException {
        try (JsonParser parser = FACTORY.createParser(from)) {
            parser.nextToken();
            return value(parser);
        }
    }

    private static Object value(JsonParser parser) throws IOException {
        return switch (parser.currentToken()) {
            case START_OBJECT -> {
                Map<String, Object> members = new LinkedHashMap<>();
                while (parser.nextToken() != JsonToken.END_OBJECT) {
                    String name = parser.getCurrentName();
                    parser.nextToken();
                    members.put(name, value(parser));
                }
                yield members;
            }
            case START_ARRAY -> {
                List<Object> elements = new ArrayList<>();
                while (parser.nextToken() != JsonToken.END_ARRAY) {
                    elements.add(value(parser));
                }
                yield elements;
            }
            case VALUE_NUMBER_INT, VALUE_NUMBER_FLOAT -> parser.getNumberValue();
            case VALUE_TRUE, VALUE_FALSE -> parser.getBooleanValue();
            case VALUE_NULL -> null;
            default -> parser.getText();
        };
    }

    /** With indentation and an end of line, as files have it. */
    static String pretty(Object value) {
        DefaultIndenter indenter = new DefaultIndenter("  ", "\n");
        DefaultPrettyPrinter printer = new DefaultPrettyPrinter().withoutSpacesInObjectEntries();
        printer.indentObjectsWith(indenter);
        printer.indentArraysWith(indenter);
        return text(value, printer) + "\n";
    }

    /** In one line. */
    static String line(Object value) {
        return text(value, null);
    }

    private static String text(Object value, DefaultPrettyPrinter printer) {
        StringWriter text = new StringWriter();
        try (JsonGenerator generator = FACTORY.createGenerator(text)) {
            generator.setPrettyPrinter(printer);
            write(generator, value);
        } catch (IOException e) {
            throw new IllegalStateException(e);
        }
        return text.toString();
    }

    private static void write(JsonGenerator to, Object value) throws IOException {
        if (value instanceof Map<?, ?> members) {
            to.writeStartObject();
            for (Map.Entry<?, ?> member : members.entrySet()) {
                to.writeFieldName((String) member.getKey());
                write(to, member.getValue());
            }
            to.writeEndObject();
        } else if (value instanceof List<?> elements) {
            to.writeStartArray();
            for (Object element : elements) {
                write(to, element);
            }
            to.writeEndArray();
        } else {
            to.writeObject(value);
        }
    }
}
