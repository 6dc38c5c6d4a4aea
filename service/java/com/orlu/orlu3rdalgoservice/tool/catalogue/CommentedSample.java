package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.tags.Enumerations;
import com.orlu.orlu3rdalgoservice.tool.tags.TagFacts;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.regex.Pattern;

/** Makes a template for request files: a sample with a comment on each tag. */
public final class CommentedSample {
    private static final Pattern NAME = Pattern.compile("\"([\\w.]+)\": ?");
    private static final String PHOTO = "\"photo\": \"";
    private static final int WIDTH = 98;
    private static final int FURTHER = 4;
    private static final int MOST_NAMES = 7;
    private static final int MOST_VALUES = 4;
    /** Units that are not shown, because they add nothing to the value. */
    private static final List<String> NO_UNITS = List.of("-", "code", "text", "bits");

    private CommentedSample() {
    }

    /** Returns the commented sample of this name, with paths relative to `folder`. */
    public static String of(String kind, Path folder) throws IOException {
        Path samples = Path.of(System.getProperty("orlu.launcher")).resolveSibling("samples");
        return commented(kind, Files.readAllLines(samples.resolve(kind + ".json")),
                folder.toRealPath().relativize(samples.toRealPath()));
    }

    // `samples` is the folder of the samples, relative to the new file's folder.
    private static String commented(String kind, List<String> lines, Path samples) {
        StringBuilder text = new StringBuilder();
        Set<String> explained = new HashSet<>();
        TextLayout layout = new TextLayout(System.out, WIDTH);
        for (String line : lines) {
            String indent = line.substring(0, line.length() - line.stripLeading().length());
            for (String name : NAME.matcher(line).results().map(found -> found.group(1)).toList()) {
                if (explained.add(name)) {
                    comments(name).stream().flatMap(comment -> layout.wrapped("", FURTHER, comment).stream())
                            .forEach(row -> text.append(indent).append("// ").append(row).append('\n'));
                }
            }
            text.append(line.replace(PHOTO, PHOTO + (samples.toString().isEmpty() ? "" : samples + "/")))
                    .append('\n');
        }
        return text.insert(text.indexOf("\n") + 1, "  // Made by ./run new " + kind
                + "; docs/request_files.md describes each field.\n").toString();
    }

    private static List<String> comments(String name) {
        TagFacts facts = TagFacts.of(name);
        return switch (name) {
            case "algorithms" -> List.of("./run algorithms lists them; the library may add and remove some.");
            case "photo" -> List.of(
                    "The frames are made from this photo; an input with a \"file\" has that file's pixels.");
            default -> facts == null ? List.of() : comments(name, facts);
        };
    }

    // Returns the meaning, the unit, and the named values if they are few.
    private static List<String> comments(String tag, TagFacts facts) {
        List<String> comments = new ArrayList<>();
        comments.add(tag + ": " + facts.meaning()
                + (NO_UNITS.contains(facts.unit()) ? "" : " (" + facts.unit() + ")"));
        List<String> names = Enumerations.names(tag);
        if (!names.isEmpty() && names.size() <= MOST_NAMES) {
            comments.add("  0, 1, ...: " + String.join(", ", names));
        }
        if (facts.values().size() <= MOST_VALUES) {
            facts.values().forEach(value -> comments.add("  " + value.value() + ": " + value.meaning()));
        }
        return comments;
    }
}
