package com.orlu.orlu3rdalgoservice.tool.request;

import com.fasterxml.jackson.core.JsonParseException;
import com.fasterxml.jackson.core.io.JsonEOFException;

import java.util.Locale;
import java.util.Map;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * What is wrong with a text that is not JSON, and what its writer may have meant.
 *
 * @param problem        in words
 * @param charactersBack how far before the parser's own place it begins
 * @param comma          where the one comma is in the text without which there is no mistake; -1 for none
 */
record SyntaxHint(String problem, int charactersBack, int comma) {
    private static final Pattern CHARACTER =
            Pattern.compile("Unexpected character \\('(.)' \\(code", Pattern.DOTALL);
    private static final Pattern WORD = Pattern.compile("(?:Unrecognized|Non-standard) token '([^']*)'");
    /** What other languages call values. */
    private static final Map<String, String> WORDS = Map.of("True", "true", "TRUE", "true", "False", "false",
            "FALSE", "false", "None", "null", "NULL", "null", "nil", "null", "undefined", "null",
            "NaN", "\"NaN\"", "Infinity", "\"Infinity\"");

    private SyntaxHint(String problem, int charactersBack) {
        this(problem, charactersBack, -1);
    }

    static SyntaxHint of(JsonParseException e, String text) {
        String message = e.getOriginalMessage();
        if (e instanceof JsonEOFException) {
            boolean isInText = message.contains("quote");
            return new SyntaxHint("it ends too early" + (isInText ? ", within a text" : ""), 0);
        }
        int at = (int) Math.max(0, Math.min(e.getLocation().getCharOffset(), text.length()));
        Matcher character = CHARACTER.matcher(message);
        if (character.find()) {
            String found = character.group(1);
            int back = back(text, found, at);
            int comma = "}]".contains(found) ? commaBefore(text, at - back) : -1;
            return new SyntaxHint("unexpected '" + found + "'" + ofCharacter(found, message, comma), back,
                    comma);
        }
        Matcher word = WORD.matcher(message);
        if (word.find()) {
            String found = word.group(1);
            String meant = WORDS.get(found.replace("-", ""));
            return new SyntaxHint("unexpected " + JsonField.cut(found)
                    + (meant != null ? " (did you mean " + meant + "?)" : "; texts need double quotes"),
                    back(text, found, at));
        }
        if (message.startsWith("Illegal unquoted character ((CTRL-CHAR, code 10)")) {
            return new SyntaxHint("a text needs its closing quote on the same line", 1);
        }
        String first = message.substring(0, 1).toLowerCase(Locale.ROOT);
        return new SyntaxHint(first + message.substring(1).replaceFirst(" \\(.*", ""), 1);
    }

    private static int back(String text, String found, int at) {
        int from = text.lastIndexOf(found, at);
        return from < 0 ? 0 : at - from;
    }

    private static String ofCharacter(String found, String message, int comma) {
        return switch (found) {
            case "}", "]" -> comma >= 0 ? "; the comma before it is one too many" : "";
            case "'" -> "; texts need double quotes";
            case "#" -> "; comments begin with //";
            case ".", "+" -> "; a number begins with a digit or a minus";
            default -> message.contains("comma") ? "; needs a comma or the end before it"
                    : message.contains("colon") ? "; needs a colon behind the field's name"
                    : message.contains("field name") ? "; names of fields need double quotes" : "";
        };
    }

    private static int commaBefore(String text, int at) {
        int before = at - 1;
        while (before >= 0 && " \t\r\n".indexOf(text.charAt(before)) >= 0) {
            --before;
        }
        return before >= 0 && text.charAt(before) == ',' ? before : -1;
    }
}
