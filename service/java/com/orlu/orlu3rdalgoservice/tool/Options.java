package com.orlu.orlu3rdalgoservice.tool;

import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/** The command line of ./run. */
final class Options {
    static final String HELP = """
            usage: ./run [options] [request.json ...]

            Sends camera requests through the post-processing library, as the service does, and tells what went in,
            what ran and what came back. Without a request file it takes samples/night.json.

              --params       print every parameter handed to the algorithms: section, key, type, value
              --arm          run the 32-bit ARM library, in an ARM JVM under an emulator
              --log          show the library's log on standard error
              --out DIR      write the resulting images there (default: out)
              --photo FILE   make the frames of this photo instead of the request's own
              --one-client   run all requests on one client instead of one for each
              --check        only read the request files and say whether they are right
              --json FILE    write parameters, algorithm lists and results as JSON, to compare two machines
              --help         print this

            Set ANDROID_LOG_TAGS to filter the log ("_V_VASJNI-VRequest:D *:S"), and LD_LIBRARY_PATH to put another
            algorithm library before the stand-in.
            """;

    final List<Path> files = new ArrayList<>();
    boolean params;
    boolean oneClient;
    boolean check;
    boolean help;
    Path out = Path.of("out");
    Path photo;
    Path json;

    /** Reads the arguments; one that is not understood is an IllegalArgumentException for people. */
    static Options parse(String[] arguments) {
        Options options = new Options();
        for (int i = 0; i < arguments.length; ++i) {
            switch (arguments[i]) {
                case "--params" -> options.params = true;
                // The launcher has opened the log and chosen the machine already.
                case "--log", "--arm" -> { }
                case "--one-client" -> options.oneClient = true;
                case "--check" -> options.check = true;
                case "--help", "-h" -> options.help = true;
                case "--out" -> options.out = value(arguments, ++i);
                case "--photo" -> options.photo = photo(value(arguments, ++i));
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
