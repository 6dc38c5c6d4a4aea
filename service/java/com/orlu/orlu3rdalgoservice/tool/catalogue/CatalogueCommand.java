package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.cli.Arguments;
import com.orlu.orlu3rdalgoservice.tool.cli.Command;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.json.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.util.List;
import java.util.Locale;
import java.util.stream.Stream;

import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParseResult;

/** A subcommand that shows a part of the catalogue: all, what a word is a part of, or one entry whole. */
public final class CatalogueCommand extends Command {
    private final String mLabel;
    private final String mExample;

    /**
     * "tags", "algorithms", "parameters", "formats" or "samples", with a phrase for the help, what a word
     * is called there and in the completion, and an example.
     */
    public CatalogueCommand(String name, String about, String label, String example) {
        super(name, about);
        mLabel = label;
        mExample = example;
    }

    @Override
    public CommandSpec spec() {
        CommandSpec spec = Arguments.command(name() + " [" + mLabel + "] [--json]",
                List.of(Catalogue.of(name()).help(),
                        mLabel + " is a part of a name, or a whole one, of which all is shown."),
                List.of("./run " + name(), "./run " + name() + " " + mExample));
        spec.addPositional(Arguments.positional(mLabel, 0, 1, String.class));
        spec.addOption(Arguments.flag("--json", "print all that is known of each, as a JSON list"));
        return spec;
    }

    @Override
    public int run(ParseResult line) {
        List<String> words = line.matchedPositionalValue(0, List.of());
        List<Json> all = Catalogue.entries(name());
        List<Json> wanted = words.isEmpty() ? all : wanted(all, words.get(0));
        if (line.hasMatchedOption("--json")) {
            System.out.print(JsonWriter.pretty(wanted));
        } else if (!words.isEmpty() && wanted.size() == 1) {
            new Page(System.out).detail(name(), wanted.get(0));
        } else {
            new Page(System.out).list(name(), wanted);
        }
        return Verdict.OK;
    }

    // The entry of that name, or of that name after a slash; else those of which the word is a part.
    private List<Json> wanted(List<Json> all, String word) {
        List<Json> exact = all.stream().filter(entry -> ("/" + Catalogue.name(entry)).endsWith("/" + word))
                .toList();
        if (!exact.isEmpty()) {
            return exact;
        }
        String part = word.toLowerCase(Locale.ROOT);
        List<Json> near = all.stream()
                .filter(entry -> Catalogue.name(entry).toLowerCase(Locale.ROOT).contains(part)).toList();
        if (near.isEmpty()) {
            throw new IllegalArgumentException("no " + Catalogue.of(name()).one() + " has " + word
                    + " in its name" + NearestWord.question(word, names(all)));
        }
        return near;
    }

    // Whole names, and what people type instead: the part after the last dot or slash.
    private static List<String> names(List<Json> all) {
        List<String> names = all.stream().map(Catalogue::name).toList();
        return Stream.concat(names.stream(), names.stream().map(name -> name.replaceFirst(".*[./]", "")))
                .toList();
    }
}
