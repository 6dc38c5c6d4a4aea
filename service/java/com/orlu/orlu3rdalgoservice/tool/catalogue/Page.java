package com.orlu.orlu3rdalgoservice.tool.catalogue;

import java.io.PrintStream;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Locale;
import java.util.Map;

/** Prints entries for people: 80 columns wide, and nothing is cut. */
final class Page {
    private static final int WIDTH = 80;
    private static final String GAP = "  ";
    private static final int BELOW = 4;
    private static final int LABEL = 15;
    private static final int LONGEST_KEY = 48;
    private static final int INDENT = 2;

    private final PrintStream mTo;

    Page(PrintStream to) {
        mTo = to;
    }

    /** A line for each entry, and below it what the catalogue shows there; then how many there are. */
    void list(Catalogue catalogue, String command, List<Entry> entries) {
        List<String> fields = new ArrayList<>(List.of("name"));
        fields.addAll(catalogue.columns());
        Entry heading = new Entry(catalogue.one().toUpperCase(Locale.ROOT));
        catalogue.columns().forEach(field -> heading.with(field, label(field).toUpperCase(Locale.ROOT)));
        int[] widths = fields.stream()
                .mapToInt(field -> Math.max(widest(field, entries), heading.text(field).length())).toArray();
        int[] starts = starts(widths);
        line(heading, fields, starts);
        for (Entry entry : entries) {
            line(entry, fields, starts);
            wrap(" ".repeat(BELOW), BELOW, catalogue.below().apply(entry));
        }
        mTo.println();
        mTo.println("%d %s; ./run %s NAME shows all that is known of one".formatted(
                entries.size(), command, command));
    }

    private void line(Entry entry, List<String> fields, int[] starts) {
        StringBuilder line = new StringBuilder();
        for (int i = 0; i < starts.length; ++i) {
            int gap = i == 0 ? 0 : Math.max(GAP.length(), starts[i] - line.length());
            line.append(" ".repeat(gap)).append(entry.text(fields.get(i)));
        }
        mTo.println(line.toString().stripTrailing());
    }

    // Where columns begin. When they take too much, the longest names reach into the next column.
    private static int[] starts(int[] widths) {
        int others = Arrays.stream(widths).skip(1).map(width -> width + GAP.length()).sum();
        int[] starts = new int[widths.length];
        for (int i = 1; i < widths.length; ++i) {
            int width = i == 1 ? Math.min(widths[0], WIDTH - others) : widths[i - 1];
            starts[i] = starts[i - 1] + width + GAP.length();
        }
        return starts;
    }

    private static int widest(String field, List<Entry> entries) {
        return entries.stream().mapToInt(entry -> entry.text(field).length()).max().orElse(0);
    }

    /** All facts of one entry. */
    void detail(String kind, Entry entry) {
        mTo.println(kind + " " + entry.name());
        entry.facts().forEach((field, value) -> {
            if (!field.equals("name") && !Entry.text(value).isEmpty()) {
                fact(label(field), value);
            }
        });
    }

    // Short texts share lines, long ones and records have their own.
    private void fact(String label, Object value) {
        String start = " ".repeat(INDENT) + pad(label, LABEL - INDENT);
        if (value instanceof List<?> elements && elements.stream().anyMatch(Page::needsLine)) {
            for (Object element : elements) {
                int key = element instanceof Map<?, ?> members ? keyWidth(members, elements) : 0;
                wrap(start + keyed(element, key), LABEL + key, rest(element, key));
                start = " ".repeat(LABEL);
            }
        } else {
            wrap(start, LABEL, Entry.text(value));
        }
    }

    private static boolean needsLine(Object element) {
        return element instanceof Map || Entry.text(element).contains(" ");
    }

    // The first of a record's values is its key; the others begin in one column.
    private static int keyWidth(Map<?, ?> members, List<?> records) {
        int longest = records.stream().mapToInt(record -> first(record).length()).max().orElse(0);
        return members.size() == 1 || longest > LONGEST_KEY ? 0 : longest + GAP.length();
    }

    private static String first(Object element) {
        return element instanceof Map<?, ?> members ? Entry.text(members.values().iterator().next())
                : Entry.text(element);
    }

    private static String keyed(Object element, int width) {
        return width == 0 ? "" : pad(first(element), width);
    }

    private static String rest(Object element, int width) {
        return element instanceof Map<?, ?> members && width > 0
                ? Entry.text(members).substring(first(element).length()).strip() : Entry.text(element);
    }

    // "readBy" as "read by".
    private static String label(String field) {
        return field.equals("standIn") ? "stand-in"
                : field.replaceAll("([A-Z])", " $1").toLowerCase(Locale.ROOT);
    }

    private static String pad(String text, int width) {
        return text + " ".repeat(Math.max(0, width - text.length()));
    }

    // The text after what its first line starts with; further lines are indented. A long word has a line.
    private void wrap(String start, int indent, String text) {
        if (text.isEmpty()) {
            return;
        }
        StringBuilder line = new StringBuilder(start);
        boolean isEmpty = true;
        for (String word : text.split(" ")) {
            if (!isEmpty && line.length() + 1 + word.length() > WIDTH) {
                mTo.println(line);
                line = new StringBuilder(" ".repeat(indent));
                isEmpty = true;
            }
            line.append(isEmpty ? "" : " ").append(word);
            isEmpty = false;
        }
        mTo.println(line.toString().stripTrailing());
    }
}
