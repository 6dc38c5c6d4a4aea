package com.orlu.orlu3rdalgoservice.tool.text;

/**
 * An error or a warning about a file.
 *
 * @param line      from 1; 0 for a file without lines
 * @param column    from 1, in UTF-16 units as editors count them
 * @param field     path of the field; empty if the problem concerns the whole file
 * @param problem   description of the mistake, such as the expected and the actual value
 */
public record Mistake(String file, int line, int column, String field, String problem, boolean isWarning) {
    /** Returns one line in the form of compilers' messages, so that editors can jump to the place. */
    public String text() {
        return text(isWarning ? "warning: " : "error: ");
    }

    String text(String severity) {
        String place = line == 0 ? file : file + ":" + line + ":" + column;
        return Printable.line(place + ": " + severity + (field.isEmpty() ? "" : field + ": ") + problem);
    }

    Mistake withNote(String note) {
        return new Mistake(file, line, column, field, problem + note, isWarning);
    }
}
