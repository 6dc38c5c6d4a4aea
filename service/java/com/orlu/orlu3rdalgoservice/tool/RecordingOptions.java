package com.orlu.orlu3rdalgoservice.tool;

import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Set;
import java.util.TreeSet;

import picocli.CommandLine;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.Model.PositionalParamSpec;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ParseResult;

/** The command lines of the subcommands on recordings. */
final class RecordingOptions {
    static final Set<String> NAMES = Set.of("info", "replay", "trim", "diff", "play", "trials");

    private static final int HELP_COLUMNS = 80;

    final String command;
    final List<Path> files;
    final List<Path> libraries;
    final List<String> ignored;
    final double tolerance;
    final boolean arm;
    final Path out;
    final Path record;
    final Set<Integer> frames;
    final boolean keepsPixels;
    final boolean explains;

    private RecordingOptions(String name, ParseResult line) {
        command = name;
        files = line.matchedPositionalValue(0, List.of());
        List<Path> named = line.matchedOptionValue("--lib", List.of());
        libraries = line.hasMatchedOption("--against")
                ? List.of(line.<Path>matchedOptionValue("--against", null))
                : named;
        ignored = line.matchedOptionValue("--ignore", List.of());
        tolerance = line.matchedOptionValue("--tolerance", 0.0);
        arm = line.hasMatchedOption("--arm");
        out = line.matchedOptionValue("--out", null);
        record = line.matchedOptionValue("--record", null);
        frames = new TreeSet<>(line.matchedOptionValue("--frames", List.<Integer>of()));
        keepsPixels = !line.hasMatchedOption("--no-pixels");
        explains = !line.hasMatchedOption("--no-explain");
    }

    private static CommandSpec spec(String name) {
        CommandSpec spec = CommandSpec.create().name("./run " + name);
        switch (name) {
            case "info" -> positional(spec, "FOLDER", "1..*", "Says what is in recordings.");
            case "replay" -> {
                positional(spec, "FOLDER", "1..*", "Runs recordings again, and compares what they do with what"
                        + " was recorded. The status is 0 when all is equal, 1 when something is different.");
                spec.addOption(path("LIBRARY", "run with this library: an algorithm library, or another "
                        + "build of the native one", "--against").build());
                spec.addOption(flag("run the 32-bit ARM library", "--arm"));
                addComparison(spec);
            }
            case "trim" -> {
                positional(spec, "FOLDER", "1", "Writes a smaller copy of a recording.");
                spec.addOption(path("DIR", "the folder of the copy, which must not be there", "--out")
                        .required(true).build());
                spec.addOption(list("N", Integer.class, "keep these frames and their inputs, and leave "
                        + "out what came of the request", "--frames").splitRegex(",").build());
                spec.addOption(flag("leave the pixels out", "--no-pixels"));
            }
            case "diff" -> {
                positional(spec, "A [B]", "1..2", "Compares two runs: recordings or folders of them, events, "
                        + "or request files, which are run first. The status is 0 when all is equal, 1 when "
                        + "something is different.");
                spec.addOption(list("LIBRARY", Path.class, "given twice: run the one A, or A and B, with "
                        + "these two libraries", "--lib").build());
                addComparison(spec);
            }
            case "trials" -> {
                positional(spec, "FOLDER", "1", "Tries what each tag of a recording changes.");
                spec.addOption(path("FILE", "where to", "--record").required(true).build());
            }
            default -> {
                positional(spec, "FOLDER", "1..*", "Runs recordings again and records that.");
                spec.addOption(path("DIR", "where to", "--record").required(true).build());
                spec.addOption(flag("run the 32-bit ARM library", "--arm"));
            }
        }
        spec.addOption(OptionSpec.builder("--help", "-h").usageHelp(true).description("print this").build());
        spec.usageMessage().width(HELP_COLUMNS).sortOptions(false).synopsisHeading("usage: ");
        return spec;
    }

    private static void addComparison(CommandSpec spec) {
        spec.addOption(flag("don't find out because of which tags parameters differ, which takes some seconds",
                "--no-explain"));
        spec.addOption(list("NAME", String.class, "leave out this parameter, value put, call or output; can "
                + "be given again", "--ignore").build());
        spec.addOption(OptionSpec.builder("--tolerance").paramLabel("N").type(Double.class)
                .description("take numbers and samples of 255 that differ by no more for equal").build());
        spec.addOption(path("DIR", "write pictures of outputs that differ there", "--out").build());
    }

    private static void positional(CommandSpec spec, String label, String arity, String about) {
        spec.addPositional(PositionalParamSpec.builder().paramLabel(label).arity(arity).type(List.class)
                .auxiliaryTypes(Path.class).build());
        spec.usageMessage().description("", about, "");
    }

    private static OptionSpec flag(String description, String name) {
        return OptionSpec.builder(name).description(description).build();
    }

    private static OptionSpec.Builder path(String label, String description, String name) {
        return OptionSpec.builder(name).paramLabel(label).type(Path.class).description(description);
    }

    private static OptionSpec.Builder list(String label, Class<?> of, String description, String name) {
        return OptionSpec.builder(name).paramLabel(label).type(List.class).auxiliaryTypes(of)
                .description(description);
    }

    /** Reads the arguments; null when they only ask for the help, which is printed then. */
    static RecordingOptions parse(String[] arguments) {
        CommandLine command = new CommandLine(spec(arguments[0]));
        try {
            String[] rest = Arrays.copyOfRange(arguments, 1, arguments.length);
            ParseResult line = command.parseArgs(rest);
            if (line.isUsageHelpRequested()) {
                command.usage(System.out);
                return null;
            }
            return new RecordingOptions(arguments[0], line).checked();
        } catch (ParameterException e) {
            throw new IllegalArgumentException(e.getMessage() + "; ./run " + arguments[0] + " --help", e);
        }
    }

    private RecordingOptions checked() {
        List<Path> needed = new ArrayList<>(files);
        needed.addAll(libraries);
        for (Path file : needed) {
            if (!Files.exists(file)) {
                throw new IllegalArgumentException("no such file: " + file);
            }
        }
        if (command.equals("diff") && libraries.size() != 2 && (files.size() != 2 || !libraries.isEmpty())) {
            throw new IllegalArgumentException("diff needs two runs, or --lib twice; ./run diff --help");
        }
        return this;
    }
}
