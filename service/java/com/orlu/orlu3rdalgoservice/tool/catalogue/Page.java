package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.PrintStream;
import java.util.Arrays;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.stream.Stream;

/** Prints entries of the catalogue as text, wrapped to 80 columns. */
public final class Page {
    private static final int GAP = 2;
    private static final int BELOW = 4;
    private static final int LABEL = 15;
    private static final int LONGEST_KEY = 48;

    private final PrintStream mTo;
    private final TextLayout mLayout;

    public Page(PrintStream to) {
        mTo = to;
        mLayout = new TextLayout(to, TextLayout.TERMINAL);
    }

    /** Prints a line for each entry with its text below, and finally the number of entries. */
    public void list(String part, List<Json> entries) {
        Catalogue catalogue = Catalogue.of(part);
        List<String> fields = Stream.concat(Stream.of("name"), catalogue.columns().stream()).toList();
        List<String> heading = Stream.concat(Stream.of(catalogue.one()),
                catalogue.columns().stream().map(Page::label))
                .map(text -> text.toUpperCase(Locale.ROOT)).toList();
        List<List<String>> rows = entries.stream().map(entry ->
                fields.stream().map(field -> Catalogue.text(entry.get(field))).toList()).toList();
        int[] starts = starts(heading, rows);
        line(heading, starts);
        for (int i = 0; i < rows.size(); ++i) {
            line(rows.get(i), starts);
            wrap(" ".repeat(BELOW), BELOW, catalogue.below().apply(entries.get(i)));
        }
        mTo.println();
        mTo.println("%d %s; ./run %s NAME prints the details of one".formatted(rows.size(), part, part));
    }

    private void line(List<String> cells, int[] starts) {
        StringBuilder line = new StringBuilder();
        for (int i = 0; i < starts.length; ++i) {
            int gap = i == 0 ? 0 : Math.max(GAP, starts[i] - line.length());
            line.append(" ".repeat(gap)).append(cells.get(i));
        }
        mTo.println(line.toString().stripTrailing());
    }

    // Returns each column's position. If the columns are too wide, long names extend into the next column.
    private static int[] starts(List<String> heading, List<List<String>> rows) {
        int[] widths = new int[heading.size()];
        Stream.concat(Stream.of(heading), rows.stream()).forEach(row ->
                Arrays.setAll(widths, i -> Math.max(widths[i], row.get(i).length())));
        int others = Arrays.stream(widths).skip(1).map(width -> width + GAP).sum();
        widths[0] = Math.min(widths[0], TextLayout.TERMINAL - others);
        int[] starts = new int[widths.length];
        for (int i = 1; i < widths.length; ++i) {
            starts[i] = starts[i - 1] + widths[i - 1] + GAP;
        }
        return starts;
    }

    /** Prints the fields of one entry. */
    public void detail(String part, Json entry) {
        mTo.println(Catalogue.of(part).one() + " " + Catalogue.name(entry));
        entry.entries().forEach((field, value) -> {
            if (!field.equals("name") && !Catalogue.text(value).isEmpty()) {
                field(label(field), value);
            }
        });
    }

    // Prints a field. Single words share lines. If any value is a record or contains blanks, each value has
    // its own line.
    private void field(String label, Json value) {
        String start = "  " + TextLayout.label(label, LABEL - 2);
        if (value.elements().stream().noneMatch(Page::needsLine)) {
            wrap(start, LABEL, Catalogue.text(value));
            return;
        }
        int longest = value.elements().stream().mapToInt(element -> first(element).length()).max().orElse(0);
        for (Json element : value.elements()) {
            // The first value of a record is its key. Keys form a column unless one is too long.
            boolean isKeyed = element.entries().size() > 1 && longest <= LONGEST_KEY;
            String key = isKeyed ? TextLayout.label(first(element), longest + GAP) : "";
            String text = Catalogue.text(element);
            wrap(start + key, LABEL + key.length(),
                    isKeyed ? text.substring(first(element).length()).strip() : text);
            start = " ".repeat(LABEL);
        }
    }

    private static boolean needsLine(Json element) {
        return element.isObject() || Catalogue.text(element).contains(" ");
    }

    private static String first(Json element) {
        Map<String, Json> members = element.entries();
        return Catalogue.text(members.isEmpty() ? element : members.values().iterator().next());
    }

    // "readBy" becomes "read by".
    private static String label(String field) {
        return field.equals("standIn") ? "stand-in"
                : field.replaceAll("([A-Z])", " $1").toLowerCase(Locale.ROOT);
    }

    private void wrap(String start, int indent, String text) {
        if (!text.isEmpty()) {
            mLayout.wrapped(start, indent, text).forEach(line -> mTo.println(line.stripTrailing()));
        }
    }
}
