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
 * @param problem in words
 * @param at      the offset in the text at which it begins
 * @param mend    with which reading can go on; null where what was meant is not plain
 */
record SyntaxHint(String problem, int at, MendedText.Mend mend) {
    private static final Pattern CHARACTER =
            Pattern.compile("Unexpected character \\('(.)' \\(code", Pattern.DOTALL);
    private static final Pattern WORD = Pattern.compile("(?:Unrecognized|Non-standard) token '([^']*)'");
    private static final Pattern OPEN = Pattern.compile("(?s).*expected close marker for (Object|Array)"
            + " \\(start marker at .*line: (\\d+), column: (\\d+).*");
    private static final Pattern WRONG_CLOSE = Pattern.compile("(?s)Unexpected close marker '(.)'"
            + ": expected '(.)' \\(for (?:Object|Array) starting at .*line: (\\d+), column: (\\d+).*");
    private static final Pattern UNQUOTED_NAME = Pattern.compile("[\\p{L}_$][\\w.$/-]*(?=\\s*[:=])");
    private static final Pattern MEMBER = Pattern.compile("\"[^\"\r\n]*\"\\s*[:=]|'[^'\r\n]*'\\s*[:=]");
    /** What other languages call values. */
    private static final Map<String, String> WORDS = Map.of("True", "true", "TRUE", "true", "False", "false",
            "FALSE", "false", "None", "null", "NULL", "null", "nil", "null", "undefined", "null",
            "NaN", "\"NaN\"", "Infinity", "\"Infinity\"");

    static SyntaxHint of(JsonParseException e, String text) {
        String message = e.getOriginalMessage();
        int at = (int) Math.max(0, Math.min(e.getLocation().getCharOffset(), text.length()));
        if (e instanceof JsonEOFException) {
            return ofEnd(message, text.length());
        }
        Matcher character = CHARACTER.matcher(message);
        if (character.find()) {
            String found = character.group(1);
            int from = from(text, found, at);
            return new SyntaxHint("unexpected '" + found + "'" + ofCharacter(found, message, text, from),
                    from, mendOf(found.charAt(0), message, text, from));
        }
        Matcher word = WORD.matcher(message);
        if (word.find()) {
            String found = word.group(1);
            int from = from(text, found, at);
            String meant = WORDS.get(found.replace("-", ""));
            return new SyntaxHint("unexpected " + JsonField.cut(found)
                    + (meant != null ? " (did you mean " + meant + "?)" : "; texts need double quotes"), from,
                    instead(from, found.length(), meant != null ? meant : '"' + found + '"'));
        }
        if (message.startsWith("Illegal unquoted character ((CTRL-CHAR, code 10)")) {
            return new SyntaxHint("a text needs its closing quote on the same line", at - 1, null);
        }
        Matcher close = WRONG_CLOSE.matcher(message);
        if (close.matches()) {
            return new SyntaxHint("unexpected '" + close.group(1) + "'; needs '" + close.group(2)
                    + "' first, for the one opened at line " + close.group(3) + " column " + close.group(4),
                    from(text, close.group(1), at), null);
        }
        String first = message.substring(0, 1).toLowerCase(Locale.ROOT);
        return new SyntaxHint(first + message.substring(1).replaceFirst(" \\(.*", ""), Math.max(0, at - 1),
                null);
    }

    private static SyntaxHint ofEnd(String message, int end) {
        Matcher open = OPEN.matcher(message);
        if (!open.matches()) {
            boolean isInText = message.contains("quote");
            return new SyntaxHint("it ends too early" + (isInText ? ", within a text" : ""), end, null);
        }
        String closing = open.group(1).equals("Object") ? "}" : "]";
        return new SyntaxHint("it ends too early; needs '" + closing + "' for the one opened at line "
                + open.group(2) + " column " + open.group(3), end, instead(end, 0, closing));
    }

    private static MendedText.Mend instead(int from, int length, String replacement) {
        return new MendedText.Mend(from, from + length, replacement);
    }

    private static int from(String text, String found, int at) {
        int from = text.lastIndexOf(found, at);
        return from < 0 ? at : from;
    }

    private static String ofCharacter(String found, String message, String text, int at) {
        return switch (found) {
            case "}", "]" -> commaBefore(text, at) >= 0 ? "; the comma before it is one too many" : "";
            case "#" -> "; comments begin with //";
            case ".", "+" -> "; a number begins with a digit or a minus";
            default -> message.contains("comma")
                    ? isBehindNumber(text, at) && Character.isLetter(found.charAt(0))
                    ? "; a number has no unit or letter behind it" : "; needs a comma or the end before it"
                    : message.contains("colon") ? "; needs a colon behind the field's name"
                    : message.contains("field name") ? "; names of fields need double quotes" : "";
        };
    }

    // Only what can hardly mean another thing; a wrong guess would bring mistakes that nobody made.
    private static MendedText.Mend mendOf(char found, String message, String text, int at) {
        if (found == '}' || found == ']') {
            int comma = commaBefore(text, at);
            return comma < 0 ? null : instead(comma, 1, " ");
        }
        if (found == '#') {
            return instead(at, 1, "//");
        }
        if (message.contains("colon")) {
            return found == '=' ? instead(at, text.startsWith("=>", at) ? 2 : 1, ":")
                    : beginsValue(found) ? instead(at, 0, ":") : null;
        }
        if (message.contains("comma")) {
            boolean isMember = MEMBER.matcher(text).region(at, text.length()).lookingAt();
            boolean isNext = message.contains("Object") ? isMember : beginsValue(found);
            return found == ';' ? instead(at, 1, ",")
                    : isNext && !isBehindNumber(text, at) ? instead(at, 0, ",") : null;
        }
        Matcher name = UNQUOTED_NAME.matcher(text).region(at, text.length());
        if (message.contains("field name") && name.lookingAt()) {
            return instead(at, name.group().length(), '"' + name.group() + '"');
        }
        return found == '+' ? instead(at, 1, " ") : found == '.' ? instead(at, 0, "0") : null;
    }

    private static boolean beginsValue(char found) {
        return "\"'{[-0123456789".indexOf(found) >= 0;
    }

    private static boolean isBehindNumber(String text, int at) {
        return at > 0 && Character.isLetterOrDigit(text.charAt(at - 1));
    }

    private static int commaBefore(String text, int at) {
        int before = at - 1;
        while (before >= 0 && " \t\r\n".indexOf(text.charAt(before)) >= 0) {
            --before;
        }
        return before >= 0 && text.charAt(before) == ',' ? before : -1;
    }
}
