package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.command.Arguments;
import com.orlu.orlu3rdalgoservice.tool.command.Command;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.util.ArrayList;
import java.util.List;

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

    // Made when it is asked for: every run of ./run makes the command.
    private Catalogue catalogue() {
        return switch (name()) {
            case "tags" -> TagCatalogue.catalogue();
            case "algorithms" -> AlgorithmCatalogue.catalogue();
            case "parameters" -> ParameterCatalogue.catalogue();
            case "formats" -> FormatCatalogue.catalogue();
            default -> SampleCatalogue.catalogue();
        };
    }

    @Override
    public CommandSpec spec() {
        CommandSpec spec = Arguments.command(name() + " [" + mLabel + "] [--json]",
                List.of(catalogue().help(),
                        mLabel + " is a part of a name, or a whole one, of which all is shown."),
                List.of("./run " + name(), "./run " + name() + " " + mExample));
        spec.addPositional(Arguments.positional(mLabel, 0, 1, String.class));
        spec.addOption(Arguments.flag("--json", "print all that is known of each, as a JSON list"));
        return spec;
    }

    @Override
    public int run(ParseResult line) {
        List<String> words = line.matchedPositionalValue(0, List.of());
        Catalogue catalogue = catalogue();
        List<Entry> all = catalogue.entries().get();
        List<Entry> wanted = words.isEmpty() ? all : wanted(catalogue.one(), all, words.get(0));
        if (line.hasMatchedOption("--json")) {
            System.out.print(Json.pretty(wanted.stream().map(Entry::facts).toList()));
        } else if (!words.isEmpty() && wanted.size() == 1) {
            new Page(System.out).detail(catalogue.one(), wanted.get(0));
        } else {
            new Page(System.out).list(catalogue, name(), wanted);
        }
        return Verdict.OK;
    }

    // The entry of that name, else those of which the word is a part.
    private static List<Entry> wanted(String one, List<Entry> all, String word) {
        List<Entry> exact = all.stream().filter(entry -> entry.isCalled(word)).toList();
        if (!exact.isEmpty()) {
            return exact;
        }
        List<Entry> near = all.stream().filter(entry -> entry.contains(word)).toList();
        if (near.isEmpty()) {
            throw new IllegalArgumentException("no " + one + " has " + word + " in its name"
                    + NearestWord.question(word, names(all)));
        }
        return near;
    }

    // Whole names, and what people say instead: the part behind the last dot or slash.
    private static List<String> names(List<Entry> all) {
        List<String> names = new ArrayList<>();
        all.forEach(entry -> names.add(entry.name()));
        all.forEach(entry -> names.add(entry.name().replaceFirst(".*[./]", "")));
        return names;
    }
}
