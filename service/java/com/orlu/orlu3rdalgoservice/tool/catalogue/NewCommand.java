package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.command.Arguments;
import com.orlu.orlu3rdalgoservice.tool.command.Command;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.Map;

import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParseResult;

/** The subcommand new: prints or writes a request file to start from, for each kind of capture. */
public final class NewCommand extends Command {
    public NewCommand() {
        super("new", "print a request file to start from");
    }

    @Override
    public CommandSpec spec() {
        CommandSpec spec = Arguments.command("new [KIND] [--out FILE]",
                List.of("Prints a small request file of a kind of capture, with a comment on each tag. It "
                        + "runs as it is. Without KIND it lists them."),
                List.of("./run new", "./run new hdr5 --out mine.json", "./run mine.json"));
        spec.addPositional(Arguments.positional("KIND", 0, 1, String.class));
        spec.addOption(Arguments.path("--out", "FILE", "write it there, where no file is yet"));
        return spec;
    }

    @Override
    public int run(ParseResult line) throws IOException {
        List<String> words = line.matchedPositionalValue(0, List.of());
        Path out = line.matchedOptionValue("--out", null);
        Map<String, Kind> kinds = Kind.all();
        if (words.isEmpty()) {
            list(kinds, out);
        } else {
            write(words.get(0), kinds, out);
        }
        return Verdict.OK;
    }

    private static void list(Map<String, Kind> kinds, Path out) {
        if (out != null) {
            throw new IllegalArgumentException("--out needs a KIND; ./run new lists them");
        }
        kinds.forEach((name, kind) -> System.out.printf("%-15s  %s%n", name, kind.about()));
    }

    private static void write(String name, Map<String, Kind> kinds, Path out) throws IOException {
        Kind kind = kinds.get(name);
        if (kind == null) {
            throw new IllegalArgumentException("no kind of capture is called " + name
                    + NearestWord.question(name, kinds.keySet()) + "; ./run new lists them");
        }
        Path folder = out == null ? Path.of("") : out.toAbsolutePath().normalize().getParent();
        Path photos = folder.toRealPath().relativize(Sample.folder().toRealPath()).resolve("photos");
        if (out == null) {
            System.out.print(kind.text(photos));
        } else if (Files.exists(out)) {
            throw new IllegalArgumentException("--out: there is a file already: " + out);
        } else {
            Files.writeString(out, kind.text(photos));
        }
    }
}
