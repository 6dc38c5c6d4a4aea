package com.orlu.orlu3rdalgoservice.tool.text;

import java.util.ArrayList;
import java.util.List;
import java.util.stream.Stream;

/** A table of texts and numbers. Columns fit their widest cells; rows can have further lines below. */
public final class TextTable {
    private static final int GAP = 2;
    private static final int INDENT = 4;
    private static final String NUMBER = "[-+]?[0-9.]*(e[-+]?[0-9]+)?|equal";

    private final List<String> mHeadings;
    private final List<List<String>> mRows = new ArrayList<>();
    private final List<List<String>> mBelow = new ArrayList<>();

    public TextTable(List<String> headings) {
        mHeadings = headings;
    }

    /** Adds a row with as many cells as there are headings, and lines to print below it. */
    public void add(List<String> cells, List<String> below) {
        mRows.add(cells.stream().map(Printable::line).toList());
        mBelow.add(below);
    }

    /** Prints the table. Right-aligns each column in which every cell is a number, empty or "equal". */
    public void print(TextLayout to) {
        to.plain(line(mHeadings));
        for (int row = 0; row < mRows.size(); ++row) {
            to.plain(line(mRows.get(row)));
            mBelow.get(row).forEach(text -> to.print(INDENT, text));
        }
    }

    private String line(List<String> cells) {
        StringBuilder line = new StringBuilder();
        for (int i = 0; i < cells.size(); ++i) {
            int column = i;
            int width = Stream.concat(Stream.of(mHeadings), mRows.stream())
                    .mapToInt(row -> row.get(column).length()).max().orElse(0);
            boolean isNumber = mRows.stream().allMatch(row -> row.get(column).matches(NUMBER));
            line.append(("%" + (isNumber ? "" : "-") + Math.max(1, width) + "s").formatted(cells.get(i)))
                    .append(" ".repeat(GAP));
        }
        return line.toString().stripTrailing();
    }
}
