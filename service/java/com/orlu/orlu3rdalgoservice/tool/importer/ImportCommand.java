package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.tool.request.RequestFileException;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.List;

import picocli.CommandLine;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.Model.PositionalParamSpec;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ParseResult;

/** The subcommand import: makes a request file of what cameras write. */
public final class ImportCommand {
    private static final String NAME = "import";
    private static final int HELP_COLUMNS = 80;
    private static final String ABOUT = "Writes a request file of a camera service's text dump, the JSON "
            + "of a camera image test, and DNG, JPEG, TIFF or PNG pictures. A line says of each value that "
            + "is dropped where it was and why (docs/importing.md).";

    private ImportCommand() {
    }

    /** Whether the command line is this one. */
    public static boolean isOne(String[] arguments) {
        return arguments.length > 0 && arguments[0].equals(NAME);
    }

    /**
     * Runs the command line; what it drops is printed. Arguments that are not understood are an
     * IllegalArgumentException, files that can't be taken a RequestFileException, and nothing is written.
     */
    public static void run(String[] arguments, PrintStream to) throws RequestFileException, IOException {
        CommandLine command = new CommandLine(spec());
        ParseResult line;
        try {
            line = command.parseArgs(Arrays.copyOfRange(arguments, 1, arguments.length));
        } catch (ParameterException e) {
            throw new IllegalArgumentException(e.getMessage() + "; ./run import --help", e);
        }
        if (line.isUsageHelpRequested()) {
            command.usage(to);
            return;
        }
        List<Path> files = line.matchedPositionalValue(0, List.of());
        Path photo = line.matchedOptionValue("--photo", null);
        for (Path file : files) {
            needFile(file);
        }
        if (photo != null) {
            needFile(photo);
        }
        write(files, line.matchedOptionValue("--out", null), photo,
                line.matchedOptionValue("--algorithms", List.of()), to);
    }

    private static void needFile(Path file) {
        if (!Files.isRegularFile(file)) {
            throw new IllegalArgumentException("no such file: " + file);
        }
    }

    private static CommandSpec spec() {
        CommandSpec spec = CommandSpec.create().name("./run " + NAME);
        spec.addPositional(PositionalParamSpec.builder().paramLabel("FILE").arity("1..*").type(List.class)
                .auxiliaryTypes(Path.class).build());
        spec.addOption(OptionSpec.builder("--out").paramLabel("FILE").type(Path.class).required(true)
                .description("the request file").build());
        spec.addOption(OptionSpec.builder("--photo").paramLabel("FILE").type(Path.class)
                .description("make the inputs of this photo, where no picture is imported").build());
        spec.addOption(OptionSpec.builder("--algorithms").paramLabel("NAME").type(List.class)
                .auxiliaryTypes(String.class).splitRegex(",")
                .description("the list to ask for, such as night,jpegEncode").build());
        spec.addOption(OptionSpec.builder("--help", "-h").usageHelp(true).description("print this").build());
        spec.usageMessage().width(HELP_COLUMNS).sortOptions(false).synopsisHeading("usage: ")
                .description("", ABOUT, "");
        return spec;
    }

    private static void write(List<Path> files, Path out, Path photo, List<String> algorithms, PrintStream to)
            throws RequestFileException, IOException {
        Notes notes = new Notes();
        Importer importer = new Importer(notes);
        importer.read(files);
        Path folder = out.toAbsolutePath().getParent();
        Files.createDirectories(folder);
        // It is read as ./run will read it, before it takes its place.
        String text = new RequestWriter(folder, importer).text(files, algorithms, photo);
        Path trial = Files.createTempFile(folder, "import", ".json");
        try {
            Files.writeString(trial, text);
            RequestFileReader.read(trial, null);
        } finally {
            Files.delete(trial);
        }
        Files.writeString(out, text);
        notes.lines().forEach(to::println);
        int tags = importer.frames().stream().mapToInt(frame -> frame.tags().size()).sum();
        to.println(out + ": " + importer.frames().size() + " frames with " + tags + " tags, "
                + importer.pictures().size() + " pictures, " + notes.lines().size() + " notes");
        if (importer.pictures().isEmpty() && photo == null) {
            to.println(out + ": no inputs; --photo makes them of a photo");
        }
    }
}
