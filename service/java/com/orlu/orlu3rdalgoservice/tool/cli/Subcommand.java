package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;

import picocli.CommandLine.Model.CommandSpec;

/** A subcommand of ./run, listed in Commands. Annotated fields, or describe(), define its options. */
interface Subcommand {
    /**
     * Runs the subcommand. Returns one of Verdict's statuses; comparisons return FAILED for a difference. An
     * IllegalArgumentException reports a mistake in the arguments; its message is shown to the user.
     */
    int run() throws MistakeException, ErrnoException, IOException;

    /**
     * Finishes the work of a process that died while it ran this subcommand, and returns a status.
     * `exitStatus` is the dead process's status, as a shell reports it.
     *
     * @throws IOException if a file can't be read or written
     */
    default int afterDeath(int exitStatus) throws IOException {
        throw new IllegalStateException("the process ended");
    }

    /** Completes `spec` with details that annotations can't express. */
    default void describe(CommandSpec spec) {
    }
}
