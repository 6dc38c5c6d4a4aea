package com.orlu.orlu3rdalgoservice.tool.model;

import com.google.gson.JsonElement;
import com.google.gson.JsonObject;
import com.google.gson.JsonParseException;
import com.google.gson.JsonParser;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/** Reads a file of events that nobody writes into any more, up to the first line that is cut or damaged. */
final class EventLines {
    private EventLines() {
    }

    static List<JsonObject> read(Path file) throws MistakeException {
        String text;
        try {
            text = new String(Files.readAllBytes(file), StandardCharsets.UTF_8);
        } catch (IOException e) {
            throw new MistakeException(file.toString(), "", "can't be read");
        }
        List<JsonObject> events = new ArrayList<>();
        for (String line : text.substring(0, text.lastIndexOf('\n') + 1).split("\n")) {
            JsonObject event = parse(line);
            if (event == null) {
                break;
            }
            events.add(event);
        }
        return events;
    }

    private static JsonObject parse(String line) {
        try {
            JsonElement element = JsonParser.parseString(line);
            boolean isEvent = element.isJsonObject() && element.getAsJsonObject().has("event")
                    && new Event(element.getAsJsonObject()).isWhole();
            return isEvent ? element.getAsJsonObject() : null;
        } catch (JsonParseException e) {
            return null;
        }
    }
}
