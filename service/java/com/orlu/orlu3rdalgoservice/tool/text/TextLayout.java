package com.orlu.orlu3rdalgoservice.tool.text;

import java.io.PrintStream;
import java.util.ArrayList;
import java.util.List;

/**
 * Prints text in lines of limited width, wrapped at blanks or cut. Escapes control characters, which
 * untrusted text may contain.
 */
public final class TextLayout {
    /** The width of a terminal. */
    public static final int TERMINAL = 80;
    /** The width of a comparison's report. */
    public static final int REPORT = 110;
    /** Marks a line that was cut. */
    public static final String CUT = "[...]";

    private static final int FURTHER = 4;
    private static final int INDENT = 2;
    private static final int LABEL_WIDTH = 12;

    private final PrintStream mTo;
    private final int mColumns;
    private boolean mHasCut;

    public TextLayout(PrintStream to, int columns) {
        mTo = to;
        mColumns = columns;
    }

    /** Limits lines to the width of a terminal, unless `wide` is set. */
    public TextLayout(PrintStream to, boolean wide) {
        this(to, wide ? Integer.MAX_VALUE : TERMINAL);
    }

    /** Prints a wrapped text. Indents its first line by `indent` blanks, and further lines by four more. */
    public void print(int indent, String text) {
        wrapped(" ".repeat(indent), indent + FURTHER, text).forEach(mTo::println);
    }

    /** Prints a label and a wrapped text. The text begins `width` characters after the label's start. */
    public void print(int indent, int width, String label, String text) {
        wrapped(" ".repeat(indent) + label(label, width), indent + width, text).forEach(mTo::println);
    }

    /** Pads a label with blanks to `width` characters. Adds at least one blank. */
    public static String label(String label, int width) {
        return label + " ".repeat(Math.max(1, width - label.length()));
    }

    /** Wraps a text. The first line begins with `start`, further lines begin with `indent` blanks. */
    public List<String> wrapped(String start, int indent, String text) {
        return wrapped(start, indent, List.of(text.split(" ")));
    }

    private List<String> wrapped(String start, int indent, List<String> words) {
        List<String> lines = new ArrayList<>();
        StringBuilder line = new StringBuilder(Printable.line(start));
        boolean isFirst = true;
        for (String word : words) {
            String shown = Printable.line(word);
            if (!isFirst && line.length() + 1L + shown.length() > mColumns) {
                lines.add(line.toString());
                line = new StringBuilder(" ".repeat(indent));
                isFirst = true;
            }
            line.append(isFirst ? "" : " ").append(shown);
            isFirst = false;
        }
        lines.add(line.toString());
        return lines;
    }

    public boolean hasCut() {
        return mHasCut;
    }

    /** Prints an empty line, preceded by a note if lines were cut. */
    public void printNotes() {
        if (mHasCut) {
            mTo.println("  (lines that end in " + CUT + " are cut: --wide shows them whole)");
        }
        mTo.println();
    }

    /** Prints one line without a label, cut if it is too long. */
    public void plain(String text) {
        mTo.println(cut(Printable.line(text)));
    }

    /** Prints one line with a label, cut if it is too long. */
    public void line(String label, String text) {
        plain(start(label) + text);
    }

    private static String start(String label) {
        return " ".repeat(INDENT) + ("%-" + LABEL_WIDTH + "s").formatted(label);
    }

    /** Prints lines, each cut if it is too long. The label precedes the first line. */
    public void lines(String label, List<String> lines) {
        String shown = label;
        for (String text : lines) {
            line(shown, text);
            shown = "";
        }
    }

    /** Prints a list with commas, wrapped between its parts; a part that is too long is cut. */
    public void list(String label, List<String> parts) {
        List<String> words = new ArrayList<>(parts);
        words.subList(0, Math.max(0, words.size() - 1)).replaceAll(part -> part + ",");
        wrapped(start(label), INDENT + LABEL_WIDTH, words).forEach(this::plain);
    }

    private String cut(String text) {
        if (text.length() <= mColumns) {
            return text;
        }
        mHasCut = true;
        return text.substring(0, mColumns - CUT.length() - 1).stripTrailing() + " " + CUT;
    }
}
