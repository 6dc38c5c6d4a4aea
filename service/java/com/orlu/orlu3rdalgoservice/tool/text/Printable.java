package com.orlu.orlu3rdalgoservice.tool.text;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;

import java.io.EOFException;
import java.util.function.IntPredicate;

/** Makes untrusted text safe for a terminal, a log or a page. */
public final class Printable {
    private Printable() {
    }

    /**
     * Returns the text on one line. Control characters, and others that may confuse a terminal, become escape
     * sequences such as \u001b.
     */
    public static String line(String text) {
        return escaped(text, JsonWriter::isUnsafe);
    }

    /** Returns the message of an exception on one line; never empty. */
    public static String message(Throwable e) {
        String message = e.getMessage();
        // Some decoders convert a missing message to the text "null".
        return message != null && !message.isBlank() && !message.equals("null") ? line(message)
                : e instanceof EOFException ? "the file ends too early" : e.getClass().getSimpleName();
    }

    /** Returns an exception's error line. The line begins with the place of a mistake, or else with "run". */
    public static String error(Throwable e) {
        return e instanceof MistakeException found ? found.mistake().text() : "run: error: " + message(e);
    }

    /** Returns the text with unsafe characters escaped as in line(), except line feeds and tabs. */
    public static String lines(String text) {
        return escaped(text, c -> c != '\n' && c != '\t' && JsonWriter.isUnsafe(c));
    }

    private static String escaped(String text, IntPredicate isUnsafe) {
        if (text.codePoints().noneMatch(isUnsafe)) {
            return text;
        }
        StringBuilder escaped = new StringBuilder();
        text.codePoints().forEach(c -> {
            if (isUnsafe.test(c)) {
                escaped.append(String.format("\\u%04x", c));
            } else {
                escaped.appendCodePoint(c);
            }
        });
        return escaped.toString();
    }
}
