package com.orlu.orlu3rdalgoservice.tool;

import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/** The command line of ./run, which prints service/run_help.txt itself. */
final class Options {
    final List<Path> files = new ArrayList<>();
    boolean params;
    boolean oneClient;
    boolean check;
    boolean wide;
    Path out = Path.of("out");
    Path photo;
    Path json;
    Path events;

    /** Reads the arguments; one that is not understood is an IllegalArgumentException for people. */
    static Options parse(String[] arguments) {
        Options options = new Options();
        for (int i = 0; i < arguments.length; ++i) {
            switch (arguments[i]) {
                case "--params" -> options.params = true;
                // The launcher has opened the log and chosen the machine already.
                case "--log", "--arm" -> { }
                case "--one-client" -> options.oneClient = true;
                case "--wide" -> options.wide = true;
                case "--check" -> options.check = true;
                case "--out" -> options.out = value(arguments, ++i);
                case "--photo" -> options.photo = photo(value(arguments, ++i));
                case "--events" -> options.events = value(arguments, ++i);
                case "--json" -> options.json = value(arguments, ++i);
                default -> options.files.add(file(arguments[i]));
            }
        }
        return options;
    }

    /** The request files, or the one that the launcher names when there are none. */
    List<Path> requests() {
        String usual = System.getProperty("orlu.request");
        if (!files.isEmpty() || usual == null) {
            return files;
        }
        return List.of(Path.of(usual));
    }

    private static Path value(String[] arguments, int index) {
        if (index >= arguments.length) {
            throw new IllegalArgumentException(arguments[index - 1] + " needs a value");
        }
        return Path.of(arguments[index]);
    }

    private static Path photo(Path photo) {
        if (!Files.isRegularFile(photo)) {
            throw new IllegalArgumentException("--photo: no such photo: " + photo);
        }
        return photo;
    }

    private static Path file(String argument) {
        if (argument.startsWith("-")) {
            throw new IllegalArgumentException("unknown option " + argument + "; --help lists all");
        }
        return Path.of(argument);
    }
}
