package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;

import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParseResult;

/**
 * A subcommand of ./run. Making one must cost nothing, since all are made for each command line. Commands has
 * a row for each.
 */
public abstract class Command {
    private final String mName;
    private final String mAbout;

    /**
     * The name is the word after ./run. The other text says what it does, as a phrase for the list of
     * subcommands; it is empty for one that is not listed.
     */
    protected Command(String name, String about) {
        mName = name;
        mAbout = about;
    }

    /** The word after ./run. */
    public final String name() {
        return mName;
    }

    /** The phrase for the list of subcommands; empty for one that is not listed. */
    public final String about() {
        return mAbout;
    }

    /** Its options and arguments, from Arguments. Only made for the command that runs, and for the help. */
    public abstract CommandSpec spec();

    /**
     * Does what the arguments ask for, and returns 0, 1 for a difference, or one of Verdict's statuses. An
     * IllegalArgumentException is a mistake in the arguments, with a message for people.
     */
    public abstract int run(ParseResult line) throws MistakeException, ErrnoException, IOException;

    /**
     * Does what is left to do when the process that ran this ended before it was done, and returns a status.
     * This process is another one. The exit status is the dead one's, as a shell has it.
     *
     * @throws IOException when what is left can't be read or written
     */
    public int afterDeath(ParseResult line, int exitStatus) throws IOException {
        throw new IllegalStateException("the process ended");
    }

    /** What the launcher does for this subcommand. */
    public Launch launch() {
        return Launch.JAVA;
    }
}
