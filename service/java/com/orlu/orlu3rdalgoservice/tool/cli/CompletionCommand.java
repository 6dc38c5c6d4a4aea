package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;

import picocli.AutoComplete;
import picocli.CommandLine.Command;

@Command(customSynopsis = "./run completion", footer = "  source <(./run completion)",
        description = "Print a script that lets bash complete subcommands, options and their values.")
final class CompletionCommand implements Subcommand {
    @Override
    public int run() {
        System.out.print(AutoComplete.bash("run", Commands.whole()));
        return Verdict.OK;
    }
}
