package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.tags.Enumerations;
import com.orlu.orlu3rdalgoservice.tool.tags.Table;
import com.orlu.orlu3rdalgoservice.tool.tags.TagFacts;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** A kind of capture, of which a request file can be made: its rows of kinds.txt. */
final class Kind {
    private static final String EVERY = "every";
    private static final String WITH = "with-";
    private static final int WIDTH = 92;
    private static final String TAG_INDENT = "        ";
    private static final int MOST_NAMES = 7;
    private static final int MOST_VALUES = 4;
    /** Units that say nothing beside the value. */
    private static final List<String> NO_UNITS = List.of("-", "code", "text", "bits");

    private final String mName;
    // By field, in order.
    private final Map<String, List<String>> mRows = new LinkedHashMap<>();

    private Kind(String name) {
        mName = name;
    }

    /** All, by name. */
    static Map<String, Kind> all() {
        Map<String, Kind> kinds = new LinkedHashMap<>();
        for (String[] row : Table.rows("/com/orlu/orlu3rdalgoservice/tool/catalogue/kinds.txt", 3)) {
            kinds.computeIfAbsent(row[0], Kind::new).mRows
                    .computeIfAbsent(row[1], field -> new ArrayList<>()).add(row[2]);
        }
        List<Kind> shared = kinds.values().stream().filter(Kind::isShared).toList();
        kinds.values().removeAll(shared);
        kinds.values().forEach(kind -> kind.inherit(shared));
        return kinds;
    }

    private boolean isShared() {
        return mName.equals(EVERY) || mName.startsWith(WITH);
    }

    // Whether these shared rows are of a kind.
    private boolean areOf(Kind kind) {
        String words = kind.rows("algorithms") + " " + kind.rows("inputs");
        return !kind.mRows.containsKey("bare")
                && (mName.equals(EVERY) || words.contains('"' + mName.substring(WITH.length()) + '"'));
    }

    // Shared tags go before the kind's own, which take the place of those of the same name.
    private void inherit(List<Kind> shared) {
        Map<String, String> tags = new LinkedHashMap<>();
        shared.stream().filter(kind -> kind.areOf(this))
                .forEach(kind -> kind.rows("tag").forEach(row -> tags.put(nameOf(row), row)));
        rows("tag").forEach(row -> tags.put(nameOf(row), row));
        rows("each").forEach(row -> tags.remove(nameOf(row)));
        mRows.put("tag", List.copyOf(tags.values()));
    }

    private List<String> rows(String field) {
        return mRows.getOrDefault(field, List.of());
    }

    // Of `"name": value`.
    private static String nameOf(String row) {
        return row.substring(1, row.indexOf('"', 1));
    }

    private static String valueOf(String row) {
        return row.substring(row.indexOf('"', 1) + 2).strip();
    }

    String about() {
        return String.join("", rows("about"));
    }

    /** The request file; photos lie in a folder, which is written as it is seen from the file's. */
    String text(Path photos) {
        StringBuilder text = new StringBuilder("{\n");
        text.append("  // Made by ./run new ").append(mName)
                .append("; docs/request_files.md says what each field can be.\n");
        text.append("  \"about\": \"").append(about()).append("\",\n");
        String type = rows("request").isEmpty() ? "\"capture\"" : rows("request").get(0);
        text.append("  \"request\": {\"id\": 1, \"type\": ").append(type).append("},\n");
        rows("fields").forEach(row -> text.append("  ").append(row).append(",\n"));
        text.append("  // ./run algorithms lists them; the library may add and remove some.\n");
        text.append("  \"algorithms\": ").append(rows("algorithms").get(0)).append(",\n");
        text.append("  // The frames are made of this; inputs with a \"file\" come from files instead.\n");
        text.append("  \"photo\": \"").append(photos.resolve(rows("photo").get(0))).append("\",\n");
        addFrames(text);
        text.append("  \"inputs\": ").append(rows("inputs").get(0)).append(",\n");
        text.append("  \"outputs\": ").append(rows("outputs").get(0)).append("\n}\n");
        return text.toString();
    }

    private void addFrames(StringBuilder text) {
        text.append("  \"frames\": {\n    ").append(rows("frames").get(0)).append(",\n");
        text.append("    \"common\": {\n");
        addTags(text, "captureResult", rows("tag"), !rows("put").isEmpty());
        if (!rows("put").isEmpty()) {
            addTags(text, "composition", rows("put"), false);
        }
        text.append(rows("each").isEmpty() ? "    }\n" : "    },\n");
        if (!rows("each").isEmpty()) {
            addEach(text, rows("each").get(0));
        }
        text.append("  },\n");
    }

    private static void addTags(StringBuilder text, String store, List<String> rows, boolean goesOn) {
        text.append("      \"").append(store).append("\": {\n");
        for (int i = 0; i < rows.size(); ++i) {
            addComment(text, TAG_INDENT, nameOf(rows.get(i)));
            addWrapped(text, rows.get(i) + (i + 1 < rows.size() ? "," : ""));
        }
        text.append(goesOn ? "      },\n" : "      }\n");
    }

    // The meaning, the unit where there is one, and values that have a meaning.
    private static void addComment(StringBuilder text, String indent, String tag) {
        TagFacts facts = TagFacts.of(tag);
        text.append(indent).append("// ").append(facts.meaning())
                .append(NO_UNITS.contains(facts.unit()) ? "" : " (" + facts.unit() + ")").append('\n');
        List<String> names = Enumerations.names(tag);
        if (!names.isEmpty() && names.size() <= MOST_NAMES) {
            text.append(indent).append("//   0, 1, ...: ").append(String.join(", ", names)).append('\n');
        }
        facts.values().stream().limit(facts.values().size() <= MOST_VALUES ? MOST_VALUES : 0)
                .forEach(value -> text.append(indent).append("//   ").append(value.value()).append(": ")
                .append(value.meaning()).append('\n'));
    }

    // A long list goes on in the next line.
    private static void addWrapped(StringBuilder text, String row) {
        String rest = row;
        String indent = TAG_INDENT;
        while (rest.length() > WIDTH) {
            int end = rest.lastIndexOf(", ", WIDTH) + 1;
            text.append(indent).append(rest, 0, end).append('\n');
            rest = rest.substring(end + 1);
            indent = TAG_INDENT + "  ";
        }
        text.append(indent).append(rest).append('\n');
    }

    // A list of what is each frame's own, of one tag.
    private static void addEach(StringBuilder text, String row) {
        addComment(text, "    ", nameOf(row));
        text.append("    \"each\": [\n");
        String[] values = valueOf(row).replaceAll("[\\[\\] ]", "").split(",");
        for (int i = 0; i < values.length; ++i) {
            text.append("      {\"captureResult\": {\"").append(nameOf(row)).append("\": ").append(values[i])
                    .append("}}").append(i + 1 < values.length ? ",\n" : "\n");
        }
        text.append("    ]\n");
    }
}
