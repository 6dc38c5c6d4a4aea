package com.orlu.orlu3rdalgoservice.tool.cli;

import picocli.CommandLine.Command;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;

/** A program that the launcher starts itself. This class only lists it in the help and the completion. */
@Command
final class LaunchedCommand implements Subcommand {
    private final String mOptions;

    /**
     * Takes the program's options except --help, separated by blanks; options with a value end in "=". A test
     * checks that the options of "conform" match the conformance kit's help.
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
