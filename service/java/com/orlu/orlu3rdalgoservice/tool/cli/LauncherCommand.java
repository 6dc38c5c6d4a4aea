package com.orlu.orlu3rdalgoservice.tool.cli;

import java.util.List;

import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParseResult;

/** A subcommand that the launcher runs itself. Here it is only known, for the help and the completion. */
public final class LauncherCommand extends Command {
    private final Launch mLaunch;
    private final List<String> mTexts;
    private final List<String> mExamples;

    /** The texts and examples are those of Arguments.command. */
    public LauncherCommand(String name, String about, Launch launch, List<String> texts,
            List<String> examples) {
        super(name, about);
        mLaunch = launch;
        mTexts = texts;
        mExamples = examples;
    }

    @Override
    public CommandSpec spec() {
        return Arguments.command(name(), mTexts, mExamples);
    }

    @Override
    public Launch launch() {
        return mLaunch;
    }

    @Override
    public int run(ParseResult line) {
        throw new IllegalStateException("the script ./run does this itself");
    }
}
