package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.tool.cli.Arguments;
import com.orlu.orlu3rdalgoservice.tool.cli.Command;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParseResult;

/** The subcommand import: makes a request file from what cameras write. */
public final class ImportCommand extends Command {
    private static final String ABOUT = "Writes a request file of a camera service's text dump, the JSON "
            + "of a camera image test, and DNG, JPEG, TIFF or PNG pictures. A line says of each value that "
            + "is dropped where it was and why (docs/importing.md).";

    public ImportCommand() {
        super("import", "make a request file of what a camera wrote");
    }

    @Override
    public CommandSpec spec() {
        CommandSpec spec = Arguments.command("import [options] FILE... --out FILE", List.of(ABOUT),
                List.of("./run import dump.txt shot.dng --out shot.json", "./run shot.json"));
        spec.addPositional(Arguments.positional("FILE", 1, Path.class));
        spec.addOption(Arguments.neededPath("--out", "FILE", "the request file"));
        spec.addOption(Arguments.path("--photo", "FILE",
                "make the inputs of this photo, where no picture is imported"));
        spec.addOption(Arguments.list("--algorithms", "ALGORITHM", String.class,
                "the list to ask for, such as night,jpegEncode").splitRegex(",").build());
        return spec;
    }

    /** Prints what it drops. Writes nothing if a file is invalid. */
    @Override
    public int run(ParseResult line) throws MistakeException, IOException {
        List<Path> files = line.matchedPositionalValue(0, List.of());
        Path photo = line.matchedOptionValue("--photo", null);
        Path out = line.matchedOptionValue("--out", null);
        if (Files.isDirectory(out)) {
            throw new IllegalArgumentException("--out: needs a file, found a folder: " + out);
        }
        for (Path file : files) {
            needFile(file, out);
        }
        if (photo != null) {
            needFile(photo, out);
        }
        write(files, out, photo, line.matchedOptionValue("--algorithms", List.of()), System.out);
        return Verdict.OK;
    }

    private static void needFile(Path file, Path out) throws IOException {
        if (!Files.isRegularFile(file)) {
            throw new IllegalArgumentException(
                    (Files.exists(file) ? "needs a file with bytes to read, found another kind: "
                            : "no such file: ") + file);
        }
        if (!Files.isReadable(file)) {
            throw new IllegalArgumentException("can't be read: " + file);
        }
        if (Files.exists(out) && Files.isSameFile(file, out)) {
            throw new IllegalArgumentException("--out would write over what is imported: " + out);
        }
    }

    private static void makeFolder(Path folder) {
        try {
            Files.createDirectories(folder);
        } catch (IOException e) {
            throw new IllegalArgumentException("--out: no folder can be made here: " + folder, e);
        }
        if (!Files.isWritable(folder)) {
            throw new IllegalArgumentException("--out: can't write into the folder " + folder);
        }
    }

    private static void write(List<Path> files, Path out, Path photo, List<String> algorithms, PrintStream to)
            throws MistakeException, IOException {
        Notes notes = new Notes();
        Importer importer = new Importer(notes);
        importer.read(files);
        Path folder = out.toAbsolutePath().getParent();
        makeFolder(folder);
        // Checked as ./run would check it.
        String text = new RequestWriter(folder, importer).text(files, algorithms, photo);
        RequestFileReader.check(out, text);
        Files.writeString(out, text);
        notes.lines().forEach(to::println);
        int tags = importer.frames().stream().mapToInt(frame -> frame.tags().size()).sum();
        to.println(out + ": " + importer.frames().size() + " frames with " + tags + " tags, "
                + importer.pictures().size() + " pictures, " + notes.count() + " notes");
        if (importer.pictures().isEmpty() && photo == null) {
            to.println(out + ": no inputs; --photo makes them of a photo");
        }
    }
}
