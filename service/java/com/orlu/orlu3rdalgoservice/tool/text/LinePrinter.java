package com.orlu.orlu3rdalgoservice.tool.text;

import java.io.PrintStream;
import java.util.List;

/** Prints labelled lines of at most 80 columns, or of any length when they are to be wide. */
public final class LinePrinter {
    private static final int COLUMNS = 80;
    private static final String INDENT = "  ";
    private static final int LABEL_WIDTH = 12;
    /** Ends what was cut. */
    public static final String CUT = "[...]";

    private final PrintStream mTo;
    private final boolean mWide;
    private boolean mHasCut;

    public LinePrinter(PrintStream to, boolean wide) {
        mTo = to;
        mWide = wide;
    }

    /** Whether any line was cut so far. */
    public boolean hasCut() {
        return mHasCut;
    }

    /** An empty line, after one that says how to see what was cut. */
    public void printNotes() {
        if (mHasCut) {
            mTo.println("  (lines that end in " + CUT + " are cut: --wide shows them whole)");
        }
        mTo.println();
    }

    /** One line without a label, cut where it is too long. */
    public void plain(String text) {
        mTo.println(cut(text));
    }

    /** One line, cut where it is too long. */
    public void line(String label, String text) {
        plain(INDENT + ("%-" + LABEL_WIDTH + "s").formatted(label) + text);
    }

    /** Several lines under one label, each cut where it is too long. */
    public void lines(String label, List<String> lines) {
        String shown = label;
        for (String text : lines) {
            line(shown, text);
            shown = "";
        }
    }

    /** A list, which goes on in the next line where it is too long. */
    public void list(String label, List<String> parts) {
        String shown = label;
        StringBuilder text = new StringBuilder();
        for (int i = 0; i < parts.size(); ++i) {
            String part = parts.get(i) + (i + 1 < parts.size() ? ", " : "");
            if (!mWide && !text.isEmpty() && text.length() + part.stripTrailing().length() > columnsLeft()) {
                line(shown, text.toString().stripTrailing());
                shown = "";
                text.setLength(0);
            }
            text.append(part);
        }
        line(shown, text.toString());
    }

    private static int columnsLeft() {
        return COLUMNS - INDENT.length() - LABEL_WIDTH;
    }

    private String cut(String text) {
        if (mWide || text.length() <= COLUMNS) {
            return text;
        }
        mHasCut = true;
        return text.substring(0, COLUMNS - CUT.length() - 1).stripTrailing() + " " + CUT;
    }
}
