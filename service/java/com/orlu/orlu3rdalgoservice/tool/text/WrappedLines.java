package com.orlu.orlu3rdalgoservice.tool.text;

import java.io.PrintStream;
import java.util.ArrayList;
import java.util.List;

/** Prints lines of at most 110 columns, which go on in the next line at a blank. A word is never cut. */
public final class WrappedLines {
    private static final int COLUMNS = 110;
    private static final int FURTHER = 4;

    private final PrintStream mTo;
    private final int mColumns;

    public WrappedLines(PrintStream to) {
        this(to, COLUMNS);
    }

    /** Lines of at most so many columns, but for a word that has more. */
    public WrappedLines(PrintStream to, int columns) {
        mTo = to;
        mColumns = columns;
    }

    /** A line that begins so far to the right, and goes on four columns further. */
    public void print(int indent, String text) {
        wrapped(indent, FURTHER, text).forEach(mTo::println);
    }

    /** A line with a label in the first columns. It goes on below its text. */
    public void print(int indent, int width, String label, String text) {
        List<String> lines = wrapped(indent + width, 0, text);
        mTo.println(" ".repeat(indent) + ("%-" + (width - 1) + "s ").formatted(label)
                + lines.get(0).substring(indent + width));
        lines.stream().skip(1).forEach(mTo::println);
    }

    private List<String> wrapped(int indent, int further, String text) {
        List<String> lines = new ArrayList<>();
        StringBuilder line = new StringBuilder(" ".repeat(indent));
        int start = indent;
        for (String word : text.split(" ")) {
            if (line.length() > start && line.length() + word.length() >= mColumns) {
                lines.add(line.toString());
                start = indent + further;
                line = new StringBuilder(" ".repeat(start));
            }
            line.append(line.length() > start ? " " : "").append(word);
        }
        lines.add(line.toString());
        return lines;
    }
}
