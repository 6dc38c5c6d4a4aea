package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.catalogue.Catalogue;
import com.orlu.orlu3rdalgoservice.tool.catalogue.CommentedSample;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

@Command(customSynopsis = "./run new [KIND] [--out FILE]",
        description = "Print a sample request for a KIND of capture, ready to run, with a comment on each "
                + "tag. Without KIND, list the kinds.",
        footer = {"  ./run new", "  ./run new hdr5 --out mine.json", "  ./run mine.json"})
final class NewCommand implements Subcommand {
    @Parameters(paramLabel = "KIND", index = "0", arity = "0..1", hidden = true,
            completionCandidates = Candidates.Kinds.class)
    private String mKind;
    @Option(names = "--out", paramLabel = "FILE", description = "Write to FILE, which must not exist")
    private Path mOut;

    @Override
    public int run() throws IOException {
        if (mKind != null) {
            write();
        } else if (mOut != null) {
            throw new IllegalArgumentException("--out requires a KIND; ./run new lists them");
        } else {
            Catalogue.entries("samples").forEach(sample -> System.out.printf("%-17s  %s%n",
                    Catalogue.name(sample), Catalogue.text(sample.get("about"))));
        }
        return Verdict.OK;
    }

    private void write() throws IOException {
        List<String> kinds = Candidates.of("samples");
        if (!kinds.contains(mKind)) {
            throw new IllegalArgumentException("no such kind: " + mKind
                    + NearestWord.question(mKind, kinds) + "; ./run new lists them");
        }
        String text = CommentedSample.of(
                mKind, mOut == null ? Path.of("") : mOut.toAbsolutePath().normalize().getParent());
        if (mOut == null) {
            System.out.print(text);
        } else if (Files.exists(mOut)) {
            throw new IllegalArgumentException("--out: the file already exists: " + mOut);
        } else {
            Files.writeString(mOut, text);
        }
    }
}
