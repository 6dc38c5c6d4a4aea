package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.cli.Arguments;
import com.orlu.orlu3rdalgoservice.tool.cli.Command;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.tags.Enumerations;
import com.orlu.orlu3rdalgoservice.tool.tags.TagFacts;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.regex.Pattern;

import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParseResult;

/** The subcommand new: prints or writes the sample of a kind of capture, with a comment on each tag. */
public final class NewCommand extends Command {
    private static final Pattern NAME = Pattern.compile("\"([\\w.]+)\": ?");
    private static final String PHOTO = "\"photo\": \"";
    private static final int WIDTH = 98;
    private static final int FURTHER = 4;
    private static final int MOST_NAMES = 7;
    private static final int MOST_VALUES = 4;
    /** Units that say nothing beside the value. */
    private static final List<String> NO_UNITS = List.of("-", "code", "text", "bits");

    public NewCommand() {
        super("new", "print a request file to start from");
    }

    @Override
    public CommandSpec spec() {
        CommandSpec spec = Arguments.command("new [KIND] [--out FILE]",
                List.of("Prints the sample of a kind of capture, with a comment on each tag. It runs as it "
                        + "is. Without KIND it lists them."),
                List.of("./run new", "./run new hdr5 --out mine.json", "./run mine.json"));
        spec.addPositional(Arguments.positional("KIND", 0, 1, String.class));
        spec.addOption(Arguments.path("--out", "FILE", "write it to FILE, which must not exist"));
        return spec;
    }

    @Override
    public int run(ParseResult line) throws IOException {
        List<String> words = line.matchedPositionalValue(0, List.of());
        Path out = line.matchedOptionValue("--out", null);
        List<Json> samples = Catalogue.entries("samples");
        if (words.isEmpty()) {
            list(samples, out);
        } else {
            write(words.get(0), samples.stream().map(Catalogue::name).toList(), out);
        }
        return Verdict.OK;
    }

    private static void list(List<Json> samples, Path out) {
        if (out != null) {
            throw new IllegalArgumentException("--out needs a KIND; ./run new lists them");
        }
        samples.forEach(sample -> System.out.printf("%-17s  %s%n", Catalogue.name(sample),
                Catalogue.text(sample.get("about"))));
    }

    private static void write(String kind, List<String> kinds, Path out) throws IOException {
        if (!kinds.contains(kind)) {
            throw new IllegalArgumentException("no kind of capture is called " + kind
                    + NearestWord.question(kind, kinds) + "; ./run new lists them");
        }
        Path samples = Path.of(System.getProperty("orlu.launcher")).resolveSibling("samples");
        Path folder = out == null ? Path.of("") : out.toAbsolutePath().normalize().getParent();
        String text = commented(kind, Files.readAllLines(samples.resolve(kind + ".json")),
                folder.toRealPath().relativize(samples.toRealPath()));
        if (out == null) {
            System.out.print(text);
        } else if (Files.exists(out)) {
            throw new IllegalArgumentException("--out: there is a file already: " + out);
        } else {
            Files.writeString(out, text);
        }
    }

    // The samples' folder as it is seen from the file's.
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
                + "; docs/request_files.md says what each field can be.\n").toString();
    }

    private static List<String> comments(String name) {
        TagFacts facts = TagFacts.of(name);
        return switch (name) {
            case "algorithms" -> List.of("./run algorithms lists them; the library may add and remove some.");
            case "photo" -> List.of(
                    "The frames are made of this; inputs with a \"file\" come from files instead.");
            default -> facts == null ? List.of() : comments(name, facts);
        };
    }

    // The meaning, the unit, and values with a meaning if they are few.
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
