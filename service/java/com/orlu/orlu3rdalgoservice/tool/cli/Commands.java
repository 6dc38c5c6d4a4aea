package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.List;
import java.util.function.Supplier;
import java.util.stream.Stream;

import picocli.CommandLine;
import picocli.CommandLine.MissingParameterException;
import picocli.CommandLine.Model.ArgSpec;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.Model.PositionalParamSpec;
import picocli.CommandLine.Model.UsageMessageSpec;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ParseResult;
import picocli.CommandLine.UnmatchedArgumentException;

/** The subcommands of ./run, and the parser of its command line. */
final class Commands {
    private static final int HELP_COLUMNS = 80;

    // A subcommand with an empty `about` is not in the help.
    private record Row(String name, String about, Supplier<Subcommand> maker) {
    }

    /** The subcommand that runs if the command line names none. */
    private static final Row USUAL = new Row("run", "", RunCommand::new);
    /**
     * The subcommands, in the order of the help. Only the selected subcommand is created, since reading
     * annotations is slow. The help of ./run and completion create all that have an `about`.
     */
    private static final List<Row> NAMED = List.of(
            new Row("new", "Print a request file to start from", NewCommand::new),
            new Row("import", "Make a request file from a camera's own files", ImportCommand::new),
            new Row("info", "Print what recordings contain", InfoCommand::new),
            new Row("replay", "Run recordings again and compare", ReplayCommand::new),
            new Row("trim", "Write a smaller copy of a recording", TrimCommand::new),
            new Row("diff", "Compare two runs", DiffCommand::new),
            new Row("sweep", "Run a request with several values of a tag", SweepCommand::new),
            new Row("compare", "Compare two libraries over many requests", CompareCommand::new),
            new Row("conform", "Check an algorithm library's conformance", () -> new LaunchedCommand(
                    "--only= --list --json --junit= --contract --hostile= --long --hammer= --seed= --repeat= "
                    + "--shuffle= --patience= --limit= --budget= --allow-noise --perf --baseline= --arm")),
            new Row("sdk", "Write a kit for makers of algorithm libraries",
                    () -> new LaunchedCommand("")),
            new Row("tags", "List tags: type, unit, meaning, readers",
                    () -> new CatalogueCommand("tags", "TAG", "orlu.control.currentModeEx")),
            new Row("algorithms", "List algorithms: what adds and removes them",
                    () -> new CatalogueCommand("algorithms", "ALGORITHM", "hdr")),
            new Row("parameters", "List parameters: type, bytes, source tags",
                    () -> new CatalogueCommand("parameters", "KEY", "hdr_process_type")),
            new Row("formats", "List image formats: planes, strides, files",
                    () -> new CatalogueCommand("formats", "FORMAT", "RAW16")),
            new Row("samples", "List the samples and what each shows",
                    () -> new CatalogueCommand("samples", "SAMPLE", "night")),
            new Row("schema", "Print a JSON schema for editing request files", SchemaCommand::new),
            new Row("completion", "Print the completion script for bash", CompletionCommand::new),
            new Row("trials", "", TrialsCommand::new));

    private Commands() {
    }

    /**
     * Returns the subcommand with its options set. If the arguments request help or the version, prints it
     * and returns null. If the arguments are wrong, throws an IllegalArgumentException with a message for the
     * user.
     */
    static Subcommand parse(String[] arguments) {
        Row named = arguments.length == 0 ? null : ofName(arguments[0]);
        Row row = named == null ? USUAL : named;
        Subcommand command = row.maker().get();
        CommandLine reader = reader(command);
        String help = "; see ./run" + (row == USUAL ? "" : " " + row.name()) + " --help";
        try {
            ParseResult line = reader.parseArgs(
                    Arrays.copyOfRange(arguments, named == null ? 0 : 1, arguments.length));
            if (line.isUsageHelpRequested()) {
                CommandLine shown = row == USUAL ? withSubcommands(reader) : reader;
                // picocli pads lines with blanks if a column is empty.
                System.out.print(shown.getUsageMessage().replaceAll(" +\n", "\n"));
                return null;
            }
            if (line.isVersionHelpRequested()) {
                reader.printVersionHelp(System.out);
                return null;
            }
        } catch (ParameterException e) {
            throw new IllegalArgumentException(problem(e) + help, e);
        }
        if (command instanceof RunCommand run) {
            run.files.stream().filter(Commands::isStray).findFirst().ifPresent(word -> {
                throw new IllegalArgumentException(strayProblem(word.toString()) + help);
            });
        }
        return command;
    }

    // Returns null if no subcommand has that name.
    private static Row ofName(String name) {
        return Stream.concat(Stream.of(USUAL), NAMED.stream()).filter(row -> row.name().equals(name))
                .findFirst().orElse(null);
    }

    private static Stream<Row> listed() {
        return NAMED.stream().filter(row -> !row.about().isEmpty());
    }

    private static CommandLine reader(Subcommand command) {
        CommandLine reader = new CommandLine(command).setOverwrittenOptionsAllowed(true)
                .setExpandAtFiles(false);
        CommandSpec spec = reader.getCommandSpec();
        command.describe(spec);
        spec.name("./run").addOption(
                OptionSpec.builder("--help", "-h").usageHelp(true).description("Print this help").build());
        UsageMessageSpec usage = spec.usageMessage();
        usage.width(HELP_COLUMNS).sortOptions(false).synopsisHeading("Usage: ")
                .optionListHeading("%nOptions:%n");
        usage.description(Stream.of(usage.description()).flatMap(text -> Stream.of("", text))
                .toArray(String[]::new));
        if (usage.footer().length > 0) {
            usage.footerHeading("%nExamples:%n");
        }
        return reader;
    }

    /** Adds the listed subcommands to `usual`, each with its `about` as description. Returns `usual`. */
    static CommandLine withSubcommands(CommandLine usual) {
        listed().forEach(row -> {
            CommandSpec spec = reader(row.maker().get()).getCommandSpec();
            spec.usageMessage().description(row.about());
            usual.addSubcommand(row.name(), spec);
        });
        return usual;
    }

    /** Returns the usual command with all listed subcommands, for bash completion. */
    static CommandLine whole() {
        CommandLine usual = withSubcommands(reader(USUAL.maker().get()));
        Stream.concat(Stream.of(usual), usual.getSubcommands().values().stream()).forEach(command -> {
            // picocli does not complete arguments that the help hides.
            CommandSpec spec = command.getCommandSpec();
            for (PositionalParamSpec hidden : List.copyOf(spec.positionalParameters())) {
                spec.remove(hidden);
                spec.addPositional(hidden.toBuilder().hidden(false).build());
            }
        });
        return usual;
    }

    // A word of letters that names no existing file is probably a mistyped subcommand.
    private static boolean isStray(Path file) {
        return file.toString().matches("[A-Za-z]+") && !Files.exists(file);
    }

    private static String strayProblem(String word) {
        List<String> names = listed().map(Row::name).toList();
        return names.contains(word) ? "the subcommand comes first: ./run " + word + " ..."
                : word + ": no such file or subcommand" + NearestWord.question(word, names);
    }

    private static String problem(ParameterException e) {
        if (e instanceof UnmatchedArgumentException unmatched) {
            String first = unmatched.getUnmatched().get(0);
            return unmatched.isUnknownOption()
                    ? "unknown option " + first + NearestWord.question(first.replaceFirst("=.*", ""),
                            List.copyOf(e.getCommandLine().getCommandSpec().optionsMap().keySet()))
                    : "unexpected argument " + first;
        }
        if (e instanceof MissingParameterException missing) {
            ArgSpec first = missing.getMissing().get(0);
            return first instanceof OptionSpec option && !option.required()
                    ? option.longestName() + " requires a value"
                    : "missing " + (first instanceof OptionSpec option ? option.longestName() + " " : "")
                            + first.paramLabel();
        }
        if (e.getArgSpec() instanceof OptionSpec option && e.getValue() != null) {
            return "%s: %s, found \"%s\"".formatted(option.longestName(), option.arity().max() == 0
                    ? "expected no value" : "expected " + option.paramLabel(), e.getValue());
        }
        return e.getMessage();
    }
}
