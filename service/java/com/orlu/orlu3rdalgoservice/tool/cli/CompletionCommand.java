package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;

import picocli.AutoComplete;
import picocli.CommandLine.Command;

/** The subcommand completion: prints picocli's completion script for bash. */
@Command(customSynopsis = "./run completion", footer = "  source <(./run completion)",
        description = "Prints a script with which bash completes subcommands, options and their values for "
                + "./run.")
final class CompletionCommand implements Subcommand {
    @Override
    public int run() {
        System.out.print(AutoComplete.bash("run", Commands.whole()));
        return Verdict.OK;
    }
}
