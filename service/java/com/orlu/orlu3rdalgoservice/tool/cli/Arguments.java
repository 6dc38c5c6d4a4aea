package com.orlu.orlu3rdalgoservice.tool.cli;

import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.Model.ArgGroupSpec;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.Model.PositionalParamSpec;

/**
 * Makes options and arguments of subcommands. They are made by calls and not by annotations, whose reading
 * costs 50 ms. A label says what a value is, for the help and for the completion, which knows what to offer
 * for DIR and FOLDER, FILE, LIBRARY, KEY, TAG, ALGORITHM and others (scripts/completion.bash).
 */
public final class Arguments {
    private static final int HELP_COLUMNS = 80;

    private Arguments() {
    }

    /**
     * A command, to which Commands adds --help. The synopsis is a line such as "info FOLDER...", the texts
     * say what the command does, a paragraph each, and the examples are lines that can be typed.
     */
    public static CommandSpec command(String synopsis, List<String> texts, List<String> examples) {
        CommandSpec spec = CommandSpec.create().name("./run");
        spec.usageMessage().width(HELP_COLUMNS).sortOptions(false).synopsisHeading("usage: ")
                .customSynopsis("./run " + synopsis).description(paragraphs(texts))
                .optionListHeading("%nOptions:%n");
        if (!examples.isEmpty()) {
            spec.usageMessage().footerHeading("%nExamples:%n").footer(lines(examples));
        }
        return spec;
    }

    private static String[] paragraphs(List<String> texts) {
        String[] lines = new String[2 * texts.size()];
        for (int i = 0; i < texts.size(); ++i) {
            lines[2 * i] = "";
            lines[2 * i + 1] = texts.get(i);
        }
        return lines;
    }

    private static String[] lines(List<String> examples) {
        String[] lines = new String[examples.size()];
        for (int i = 0; i < lines.length; ++i) {
            lines[i] = "  " + examples.get(i);
        }
        return lines;
    }

    /** Options that stand together in the help, below a heading. */
    public static void addGroup(CommandSpec spec, String heading, List<OptionSpec> options) {
        ArgGroupSpec.Builder group = ArgGroupSpec.builder().heading("%n" + heading + ":%n").validate(false);
        options.forEach(group::addArg);
        spec.addArgGroup(group.build());
    }

    /** The option that every command has. */
    public static OptionSpec help() {
        return OptionSpec.builder("--help", "-h").usageHelp(true).userObject(Launch.HELP)
                .description("print this").build();
    }

    /** An option without a value. */
    public static OptionSpec flag(String name, String description) {
        return flag(name, description, Launch.JAVA);
    }

    /** An option without a value that the launcher acts on. */
    public static OptionSpec flag(String name, String description, Launch launch) {
        return OptionSpec.builder(name).description(description).userObject(launch).build();
    }

    /** An option whose value is a path. */
    public static OptionSpec path(String name, String label, String description) {
        return path(name, label, description, Launch.JAVA);
    }

    /** The same, on which the launcher acts. */
    public static OptionSpec path(String name, String label, String description, Launch launch) {
        return pathBuilder(name, label, description, launch).build();
    }

    /** An option whose value is a path, to be given. */
    public static OptionSpec neededPath(String name, String label, String description) {
        return neededPath(name, label, description, Launch.JAVA);
    }

    /** The same, on which the launcher acts. */
    public static OptionSpec neededPath(String name, String label, String description, Launch launch) {
        return pathBuilder(name, label, description, launch).required(true).build();
    }

    private static OptionSpec.Builder pathBuilder(
            String name, String label, String description, Launch launch) {
        return OptionSpec.builder(name).paramLabel(label).type(Path.class).description(description)
                .userObject(launch);
    }

    /** An option that can be given again; its value is the list of all. */
    public static OptionSpec.Builder list(String name, String label, Class<?> of, String description) {
        return OptionSpec.builder(name).paramLabel(label).type(List.class).auxiliaryTypes(of)
                .description(description);
    }

    /** The arguments that are no options, from so many on; their value is a list. */
    public static PositionalParamSpec positional(String label, int least, Class<?> of) {
        return positional(label, least, Integer.MAX_VALUE, of);
    }

    /** The same, so many at most. */
    public static PositionalParamSpec positional(String label, int least, int most, Class<?> of) {
        String last = most == Integer.MAX_VALUE ? "*" : String.valueOf(most - 1);
        String arity = most == Integer.MAX_VALUE ? "*" : String.valueOf(most);
        return PositionalParamSpec.builder().paramLabel(label).index("0.." + last)
                .arity(least + ".." + arity).required(least > 0).hidden(true).type(List.class)
                .auxiliaryTypes(of).build();
    }
}
