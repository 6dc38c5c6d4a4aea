package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.catalogue.Catalogue;
import com.orlu.orlu3rdalgoservice.tool.catalogue.Page;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.util.List;
import java.util.Locale;
import java.util.stream.Stream;

import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.PositionalParamSpec;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

/** A subcommand that shows a part of the catalogue: all entries, those matching a word, or one in full. */
@Command
final class CatalogueCommand implements Subcommand {
    private final String mName;
    private final String mLabel;
    private final String mExample;

    @Parameters(index = "0", arity = "0..1", hidden = true)
    private String mWord;
    @Option(names = "--json", description = "Print complete entries as a JSON list")
    private boolean mJson;

    /** `name` selects a part of the catalogue (Catalogue.of()); `label` names the argument in the help. */
    CatalogueCommand(String name, String label, String example) {
        mName = name;
        mLabel = label;
        mExample = example;
    }

    @Override
    public void describe(CommandSpec spec) {
        PositionalParamSpec word = spec.positionalParameters().get(0);
        spec.remove(word);
        spec.addPositional(word.toBuilder().paramLabel(mLabel)
                .completionCandidates(() -> Candidates.of(mName).iterator()).build());
        spec.usageMessage().customSynopsis("./run " + mName + " [" + mLabel + "] [--json]")
                .description(Catalogue.of(mName).help(),
                        mLabel + " is a name or part of one. A single match is printed in full.")
                .footer("  ./run " + mName, "  ./run " + mName + " " + mExample);
    }

    @Override
    public int run() {
        List<Json> all = Catalogue.entries(mName);
        List<Json> wanted = mWord == null ? all : wanted(all, mWord);
        if (mJson) {
            System.out.print(JsonWriter.pretty(wanted));
        } else if (mWord != null && wanted.size() == 1) {
            new Page(System.out).detail(mName, wanted.get(0));
        } else {
            new Page(System.out).list(mName, wanted);
        }
        return Verdict.OK;
    }

    // Returns the entries whose name is `word` or ends with a slash and `word`. Without such entries, returns
    // those whose names contain `word`, in upper or lower case.
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
            throw new IllegalArgumentException("no such " + Catalogue.of(mName).one() + ": " + word
                    + NearestWord.question(word, names(all)));
        }
        return near;
    }

    // Returns the full names, then the short names that people type: the part after the last dot or slash.
    private static List<String> names(List<Json> all) {
        List<String> names = all.stream().map(Catalogue::name).toList();
        return Stream.concat(names.stream(), names.stream().map(name -> name.replaceFirst(".*[./]", "")))
                .toList();
    }
}
