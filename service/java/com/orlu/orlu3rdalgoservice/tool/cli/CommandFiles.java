package com.orlu.orlu3rdalgoservice.tool.cli;


import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

import picocli.CommandLine.Model.ArgSpec;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;

/**
 * Writes what is known of the command line for those who can't ask Java: the script ./run, which starts
 * without a build, and the completion for bash. service/command has these files, and a test compares them.
 */
public final class CommandFiles {
    private static final String HEAD = """
            # Every subcommand of ./run, and its arguments: made by the build's target command-files.
            # "run" is ./run without a subcommand. The columns are the subcommand; "." for itself, "-" for an
            # argument that is no option, or the option; the label of its value; what the launcher does.
            """;

    private CommandFiles() {
    }

    /** Writes into the folder that is named: options.txt, and help/SUBCOMMAND.txt, but for conform's. */
    public static void main(String[] arguments) throws IOException {
        Path folder = Path.of(arguments[0]);
        Files.createDirectories(folder.resolve("help"));
        List<String> rows = new ArrayList<>();
        add(Commands.USUAL, rows, folder);
        for (Command command : Commands.NAMED) {
            add(command, rows, folder);
        }
        Files.writeString(folder.resolve("options.txt"), HEAD + String.join("", rows));
    }

    private static void add(Command command, List<String> rows, Path folder) throws IOException {
        String name = command.name();
        boolean isListed = command == Commands.USUAL || !command.about().isEmpty();
        rows.add(row(name, ".", isListed ? "listed" : "hidden", command.launch()));
        CommandSpec spec = Commands.specOf(command);
        for (ArgSpec argument : spec.positionalParameters()) {
            rows.add(row(name, "-", argument.paramLabel(), Launch.JAVA));
        }
        for (OptionSpec option : spec.options()) {
            Launch launch = option.userObject() instanceof Launch one ? one : Launch.JAVA;
            for (String spelling : option.names()) {
                rows.add(row(name, spelling, option.arity().max() == 0 ? "-" : option.paramLabel(), launch));
            }
        }
        if (isListed && command.launch() != Launch.CONFORM) {
            Files.writeString(folder.resolve("help").resolve(name + ".txt"), Commands.help(command));
        }
    }

    private static String row(String command, String argument, String value, Launch launch) {
        return "%-11s %-13s %-14s %s\n".formatted(command, argument, value, launch.word());
    }
}
