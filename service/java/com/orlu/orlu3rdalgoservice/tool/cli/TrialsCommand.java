package com.orlu.orlu3rdalgoservice.tool.cli;

import java.nio.file.Path;
import java.util.Set;

import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

/** Arguments of ./run trials. Comparisons start this command for one request; TrialSession runs it. */
@Command(customSynopsis = "./run trials REQUEST [--only TAG]... --record FILE",
        description = "Find by trial what each tag of a request changes.")
final class TrialsCommand implements Subcommand {
    @Parameters(paramLabel = "REQUEST", index = "0", hidden = true)
    Path request;
    @Option(names = "--only", paramLabel = "TAG", description = "Try only these tags")
    Set<String> only = Set.of();
    @Option(names = "--record", paramLabel = "FILE", required = true,
                description = "Write the results to FILE")
    Path record;

    @Override
    public int run() {
        throw new IllegalStateException("only the launcher runs trials");
    }
}
