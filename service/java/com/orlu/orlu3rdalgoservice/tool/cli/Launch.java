package com.orlu.orlu3rdalgoservice.tool.cli;

import java.util.Locale;

/**
 * What the launcher, the script ./run, must do for an option or a subcommand before or instead of starting
 * the Java half. The generated table service/command/options.txt has these words in its last column.
 */
public enum Launch {
    /** Nothing: the Java half does all. */
    JAVA,
    /** Build and start the ARM machine instead of this one. */
    ARM,
    /** Have the probe keep the pixels of both directions. */
    PIXELS,
    /** Let the library's log through. */
    LOG,
    /** Run the trials first, in a process of their own. */
    TRIALS,
    /** The same, and keep the library's log for the page. */
    REPORT,
    /** Run the trials and nothing else. */
    ONLY_TRIALS,
    /** Print the help of the subcommand, without a build. */
    HELP,
    /** Print the version, without a build. */
    VERSION,
    /** Start the program that checks algorithm libraries. */
    CONFORM,
    /** Print the completion for bash, without a build. */
    COMPLETION;

    /** The word in the table. */
    public String word() {
        return this == JAVA ? "-" : name().toLowerCase(Locale.ROOT).replace('_', '-');
    }
}
