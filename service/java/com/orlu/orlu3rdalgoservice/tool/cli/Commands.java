package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.catalogue.CatalogueCommand;
import com.orlu.orlu3rdalgoservice.tool.catalogue.NewCommand;
import com.orlu.orlu3rdalgoservice.tool.catalogue.SchemaCommand;
import com.orlu.orlu3rdalgoservice.tool.importer.ImportCommand;

import java.util.Arrays;
import java.util.List;

import picocli.CommandLine;
import picocli.CommandLine.MissingParameterException;
import picocli.CommandLine.Model.ArgSpec;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ParseResult;
import picocli.CommandLine.UnmatchedArgumentException;

/** The subcommands of ./run, and the reading of its command line. */
final class Commands {
    /** What runs when no subcommand is named. */
    static final Command USUAL = new RunCommand();
    /** The others, in the order of the help. A new one is a row here. */
    static final List<Command> NAMED = List.of(
            new NewCommand(),
            new ImportCommand(),
            new RecordingCommand("info", "say what is in recordings of requests"),
            new RecordingCommand("replay", "run recordings again, and compare"),
            new RecordingCommand("trim", "write a smaller copy of a recording"),
            new RecordingCommand("diff", "compare two runs of a request"),
            // The program has the help of its own, since it has the options.
            new LauncherCommand("conform", "check whether an algorithm library behaves", Launch.CONFORM,
                    List.of(), List.of()),
            new CatalogueCommand("tags", "list tags: type, unit, meaning, who reads them", "TAG",
                    "orlu.control.currentModeEx"),
            new CatalogueCommand("algorithms", "list algorithms: what adds and removes them",
                    "ALGORITHM", "hdr"),
            new CatalogueCommand("parameters", "list parameters: type, bytes, the tags they come from", "KEY",
                    "hdr_process_type"),
            new CatalogueCommand("formats", "list image formats: planes, strides, files", "FORMAT",
                    "RAW16"),
            new CatalogueCommand("samples", "list the samples and what each shows", "SAMPLE", "night"),
            new SchemaCommand(),
            new LauncherCommand("completion", "print the completion for bash", Launch.COMPLETION,
                    List.of("Prints what lets bash complete subcommands, options and their values, for this "
                            + "and any other checkout's ./run."),
                    List.of("source <(./run completion)")),
            new RecordingCommand("trials", ""));

    /** A command line that is understood: a command, and what its arguments say. */
    record Invocation(Command command, ParseResult line) {
    }

    private Commands() {
    }

    /**
     * Reads the arguments, and returns null when they only ask for the help or the version, which is printed
     * then. What is not understood is an IllegalArgumentException for people.
     */
    static Invocation parse(String[] arguments) {
        Command named = arguments.length == 0 ? null : ofName(arguments[0]);
        Command command = named == null ? USUAL : named;
        CommandLine reader = reader(command);
        int from = named == null ? 0 : 1;
        try {
            ParseResult line = reader.parseArgs(Arrays.copyOfRange(arguments, from, arguments.length));
            if (line.isUsageHelpRequested()) {
                System.out.print(help(command));
                return null;
            }
            if (line.isVersionHelpRequested()) {
                reader.printVersionHelp(System.out);
                return null;
            }
            return new Invocation(command, line);
        } catch (ParameterException e) {
            throw new IllegalArgumentException(problem(e) + "; see " + helpOf(command), e);
        }
    }

    // Null for a word that is none's.
    private static Command ofName(String name) {
        if (USUAL.name().equals(name)) {
            return USUAL;
        }
        for (Command command : NAMED) {
            if (command.name().equals(name)) {
                return command;
            }
        }
        return null;
    }

    /** The options and arguments of a command, with --help. */
    static CommandSpec specOf(Command command) {
        return command.spec().addOption(Arguments.help());
    }

    private static CommandLine reader(Command command) {
        return new CommandLine(specOf(command)).setOverwrittenOptionsAllowed(true)
                .setExpandAtFiles(false);
    }

    private static String helpOf(Command command) {
        return command == USUAL ? "./run --help" : "./run " + command.name() + " --help";
    }

    private static String problem(ParameterException e) {
        if (e instanceof UnmatchedArgumentException unmatched) {
            String first = unmatched.getUnmatched().get(0);
            // The launcher refused unknown options, with the nearest known one.
            return (unmatched.isUnknownOption() ? "unknown option " : "one argument too many: ") + first;
        }
        if (e instanceof MissingParameterException missing) {
            ArgSpec first = missing.getMissing().get(0);
            return first instanceof OptionSpec option && !option.required()
                    ? option.longestName() + " needs a value"
                    : "needs " + (first instanceof OptionSpec option ? option.longestName() + " " : "")
                            + first.paramLabel();
        }
        if (e.getArgSpec() instanceof OptionSpec option && e.getValue() != null) {
            return "%s needs %s, found \"%s\"".formatted(
                    option.longestName(), option.paramLabel(), e.getValue());
        }
        return e.getMessage();
    }

    /** The help of a command. */
    static String help(Command command) {
        CommandLine shown = command == USUAL ? listing() : reader(command);
        // picocli ends lines with blanks where a column is empty.
        return shown.getUsageMessage().replaceAll(" +\n", "\n");
    }

    // The usual command with the others below it, which reading a command line does without.
    private static CommandLine listing() {
        CommandLine usual = reader(USUAL);
        for (Command command : NAMED) {
            if (!command.about().isEmpty()) {
                CommandSpec spec = specOf(command);
                spec.usageMessage().description(command.about());
                usual.addSubcommand(command.name(), spec);
            }
        }
        return usual;
    }
}
