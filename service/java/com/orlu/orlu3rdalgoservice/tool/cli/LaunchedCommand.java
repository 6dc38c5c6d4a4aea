package com.orlu.orlu3rdalgoservice.tool.cli;

import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;

/** A program that the script ./run starts directly. This class only adds it to the help and completion. */
@Command
final class LaunchedCommand implements Subcommand {
    private final String mOptions;

    /**
     * `options` lists the program's options except --help, separated by blanks. An option with a value ends
     * in "=". A test checks that the options of "conform" match the conformance kit's help.
     */
    LaunchedCommand(String options) {
        mOptions = options;
    }

    @Override
    public void describe(CommandSpec spec) {
        if (mOptions.isEmpty()) {
            return;
        }
        for (String option : mOptions.split(" ")) {
            OptionSpec.Builder builder = OptionSpec.builder(option.replace("=", ""));
            spec.addOption((option.endsWith("=") ? builder.type(String.class) : builder).build());
        }
    }

    @Override
    public int run() {
        throw new IllegalStateException("the launcher runs this");
    }
}
