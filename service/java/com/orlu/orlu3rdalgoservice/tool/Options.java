package com.orlu.orlu3rdalgoservice.tool;

import com.orlu.orlu3rdalgoservice.record.RequestRecorder;

import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine;
import picocli.CommandLine.MissingParameterException;
import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.Model.PositionalParamSpec;
import picocli.CommandLine.ParameterException;
import picocli.CommandLine.ParseResult;
import picocli.CommandLine.UnmatchedArgumentException;

/**
 * The command line of ./run: every option, with its words in the help, of which service/run_help.txt is a
 * copy for a machine without a build. The rows are calls and not annotations, whose reading costs 50 ms.
 */
final class Options {
    private static final int HELP_COLUMNS = 80;
    private static final String[] SYNOPSIS = {
        "./run [options] [request.json ...]",
        "       ./run conform [LIBRARY]      whether an algorithm library behaves",
        "       ./run info FOLDER...         what is in recordings of requests",
        "       ./run replay FOLDER...       run recordings again, and compare",
        "       ./run trim FOLDER --out DIR  write a smaller copy of a recording",
        "       ./run diff A B               compare two runs of a request",
        "       (each of these has a --help of its own)",
    };
    private static final String ABOUT = """

            Sends camera requests through the post-processing library, as the service does, and shows what \
            went in, what ran and what came back. Without a request file it takes samples/night.json.
            """;
    private static final String STATUSES = """

            The last line is the verdict: "verdict  ok", or what the algorithm library did wrong. The \
            status is 0 when all went well, 1 when a request failed, 2 when the command line or a request \
            file can't be taken (nothing runs then), 3 when the algorithm library can't be used: it can't be \
            opened, has no entry, lacks a callable that no request can do without, or makes no client. When \
            it ends the process, DIR/crash.log says where.
            """;
    private static final String SUBCOMMANDS = """
            Subcommands, each with a --help of its own: import makes a request file of what a camera wrote \
            (docs/importing.md); info, replay, trim and diff work on recordings (docs/recording.md).
            """;
    private static final String VARIABLES = """
            Set ANDROID_LOG_TAGS to filter the log ("_V_VASJNI-VRequest:D *:S"), and LD_LIBRARY_PATH to put \
            another algorithm library before the stand-in.
            """;

    final boolean params;
    final boolean tags;
    final boolean strict;
    final boolean wide;
    final boolean oneClient;
    final boolean check;
    final Path out;
    final Path photo;
    final Path json;
    final Path events;
    final Path timeline;
    final Path record;
    /** Keys of parameters, perhaps with their sections, and words such as "all". */
    final List<String> explain;

    private final List<Path> mFiles;

    private Options(ParseResult line) {
        params = line.hasMatchedOption("--params");
        tags = line.hasMatchedOption("--tags");
        strict = line.hasMatchedOption("--strict");
        wide = line.hasMatchedOption("--wide");
        oneClient = line.hasMatchedOption("--one-client");
        check = line.hasMatchedOption("--check");
        out = line.matchedOptionValue("--out", Path.of("out"));
        photo = line.matchedOptionValue("--photo", null);
        json = line.matchedOptionValue("--json", null);
        events = line.matchedOptionValue("--events", null);
        timeline = line.matchedOptionValue("--timeline", null);
        record = line.matchedOptionValue("--record", null);
        explain = line.matchedOptionValue("--explain", List.of());
        mFiles = line.matchedPositionalValue(0, List.of());
    }

    private static CommandSpec commandSpec() {
        CommandSpec command =
                CommandSpec.create().name("./run").version(System.getProperty("orlu.version", "unknown"));
        command.addOption(flag("print every parameter handed to the algorithms", "--params"));
        command.addOption(OptionSpec.builder("--explain").paramLabel("[SECTION/]KEY").type(List.class)
                .auxiliaryTypes(String.class).arity("1")
                .description("say who wrote this parameter and which tags it depends on, found by trying: "
                        + "a key, \"algorithms\" or \"all\" (docs/explain.md)").build());
        command.addOption(flag("print what was read of each frame's tags, what was not, and what stands where "
                + "one is absent", "--tags"));
        command.addOption(flag("fail when a tag is never read, or of a wrong type", "--strict"));
        command.addOption(flag("print lines of any length, instead of cutting them to 80 columns", "--wide"));
        // The launcher looks for these two itself, before it starts a VM.
        command.addOption(flag("run the 32-bit ARM library, in an ARM JVM under an emulator", "--arm"));
        command.addOption(flag("show the library's log on standard error", "--log"));
        command.addOption(path("DIR", "write the resulting images there (default: out)", "--out"));
        command.addOption(
                path("FILE", "make the frames of this photo instead of the request's own", "--photo"));
        command.addOption(flag("run all requests on one client instead of one for each", "--one-client"));
        command.addOption(flag("only read the request files and say whether they are right", "--check"));
        command.addOption(path("FILE",
                "write parameters, algorithm lists, results, times and the verdict as JSON", "--json"));
        command.addOption(path("FILE", "keep all that passed between the library and the algorithm library, "
                + "and every look-up of a tag, as JSON lines (docs/events.md)", "--events"));
        command.addOption(path("FILE",
                "write a timeline of the run that trace viewers open (docs/timeline.md)", "--timeline"));
        command.addOption(path("DIR",
                "record each request in a folder (docs/recording.md)", "--record"));
        command.addOption(
                OptionSpec.builder("--help", "-h").usageHelp(true).description("print this").build());
        command.addOption(
                OptionSpec.builder("--version").versionHelp(true).description("print the version").build());
        command.addPositional(PositionalParamSpec.builder().paramLabel("request.json").arity("0..*")
                .hidden(true).type(List.class).auxiliaryTypes(Path.class).build());
        command.usageMessage().width(HELP_COLUMNS).sortOptions(false).synopsisHeading("usage: ")
                .customSynopsis(SYNOPSIS).description(ABOUT)
                .footer(STATUSES, SUBCOMMANDS, VARIABLES);
        return command;
    }

    private static OptionSpec flag(String description, String name) {
        return OptionSpec.builder(name).description(description).build();
    }

    private static OptionSpec path(String label, String description, String name) {
        return OptionSpec.builder(name).paramLabel(label).type(Path.class).description(description).build();
    }

    /**
     * Reads the arguments, and returns null when they only ask for the help or the version, which is printed
     * then. What is not understood is an IllegalArgumentException for people.
     */
    static Options parse(String[] arguments) {
        CommandLine command = new CommandLine(commandSpec()).setOverwrittenOptionsAllowed(true);
        try {
            ParseResult line = command.parseArgs(arguments);
            if (line.isUsageHelpRequested()) {
                command.usage(System.out);
                return null;
            }
            if (line.isVersionHelpRequested()) {
                command.printVersionHelp(System.out);
                return null;
            }
            return checked(new Options(line));
        } catch (UnmatchedArgumentException e) {
            throw new IllegalArgumentException(
                    "unknown option " + e.getUnmatched().get(0) + "; --help lists all", e);
        } catch (MissingParameterException e) {
            throw new IllegalArgumentException(
                    ((OptionSpec) e.getMissing().get(0)).longestName() + " needs a value", e);
        } catch (ParameterException e) {
            throw new IllegalArgumentException(e.getMessage(), e);
        }
    }

    private static Options checked(Options options) {
        if (options.photo != null && !Files.isRegularFile(options.photo)) {
            throw new IllegalArgumentException("--photo: no such photo: " + options.photo);
        }
        return options;
    }

    /** The recorder that --record, else the recorder's own property asks for; null when neither does. */
    RequestRecorder recorder() {
        return record == null ? RequestRecorder.ofProperties()
                : new RequestRecorder(record.toFile(), Integer.MAX_VALUE, Long.MAX_VALUE);
    }

    /** Whether look-ups of tags are to be recorded: they are many, and cost as much as the request. */
    boolean needsLookups() {
        return events != null || needsTrials();
    }

    /** Whether anything is asked for that the launcher's trials find, and look-ups tell. */
    boolean needsTrials() {
        return tags || strict || !explain.isEmpty();
    }

    /** The request files, or the one that the launcher names when there are none. */
    List<Path> requests() {
        String usual = System.getProperty("orlu.request");
        return !mFiles.isEmpty() || usual == null ? mFiles : List.of(Path.of(usual));
    }
}
