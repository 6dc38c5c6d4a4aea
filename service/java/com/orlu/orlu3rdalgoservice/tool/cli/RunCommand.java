package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.Model.UsageMessageSpec;
import picocli.CommandLine.ParseResult;

/** What ./run does without a subcommand: it runs requests. */
final class RunCommand extends Command {
    private static final String ABOUT = "Sends camera requests through the post-processing library, as the "
            + "service does, and shows what went in, what ran and what came back. Without a request file it "
            + "takes samples/night.json.";
    private static final List<String> EXAMPLES = List.of(
            "./run samples/clarity.json            another request",
            "./run --params samples/capture.json   every parameter handed over",
            "./run --log --photo my.jpg            the library's log, frames of a photo",
            "./run diff a.json b.json              what two requests do differently",
            "./run tags zoom                       what is known of the tags on zoom");
    private static final String STATUSES = """

            The last line is the verdict: "verdict  ok", or what the algorithm library did wrong. The \
            status is 0 when all went well, 1 when a request failed, 2 when the command line or a request \
            file can't be taken (nothing runs then), 3 when the algorithm library can't be used: it can't be \
            opened, has no entry, lacks a callable that no request can do without, or makes no client. When \
            it ends the process, the file crash.log beside the images says where.
            """;
    private static final String VARIABLES = """
            Set ANDROID_LOG_TAGS to filter the log ("_V_VASJNI-VRequest:D *:S"), and LD_LIBRARY_PATH to put \
            another algorithm library before the stand-in.
            """;

    RunCommand() {
        super("run", "");
    }

    @Override
    public CommandSpec spec() {
        CommandSpec command = Arguments.command("[options] [request.json ...]", List.of(ABOUT), EXAMPLES)
                .version(System.getProperty("orlu.version", "unknown"));
        Arguments.addGroup(command, "What is shown", List.of(
                Arguments.flag("--params", "print every parameter handed to the algorithms"),
                OptionSpec.builder("--explain").paramLabel("[SECTION/]KEY").type(List.class)
                        .auxiliaryTypes(String.class).arity("1").userObject(Launch.TRIALS)
                        .description("say who wrote this parameter and which tags it depends on, found by "
                                + "trying: a key, \"algorithms\" or \"all\" (docs/explain.md)").build(),
                Arguments.flag("--tags", "print what was read of each frame's tags, what was not, and what "
                        + "stands where one is absent", Launch.TRIALS),
                Arguments.flag("--log", "show the library's log on standard error", Launch.LOG),
                Arguments.flag("--wide",
                        "print lines of any length, instead of cutting them to 80 columns")));
        Arguments.addGroup(command, "What is written", List.of(
                Arguments.path("--out", "DIR", "write the resulting images there (default: out)"),
                Arguments.path("--json", "FILE",
                        "write parameters, algorithm lists, results, times and the verdict as JSON"),
                Arguments.path("--events", "FILE",
                        "keep all that passed between the library and the algorithm library, and every "
                                + "look-up of a tag, as JSON lines (docs/events.md)"),
                Arguments.path("--timeline", "FILE",
                        "write a timeline of the run that trace viewers open (docs/timeline.md)"),
                Arguments.path("--report", "DIR", "write a page on each request that a browser shows: "
                        + "pictures, memory, timeline, parameters, tags, log, and what looks wrong "
                        + "(docs/report.md)",
                        Launch.REPORT),
                Arguments.path("--record", "DIR", "record each request in a folder (docs/recording.md)",
                        Launch.PIXELS)));
        Arguments.addGroup(command, "What is run", List.of(
                Arguments.flag("--check", "only read the request files and say whether they are right"),
                Arguments.flag("--strict", "fail when a tag is never read, or of a wrong type, or the "
                        + "request file has a warning", Launch.TRIALS),
                Arguments.path("--photo", "FILE",
                        "make the frames of this photo instead of the request's own"),
                Arguments.flag("--one-client", "run all requests on one client instead of one for each"),
                Arguments.flag("--arm", "run the 32-bit ARM library, in an ARM JVM under an emulator",
                        Launch.ARM)));
        command.addOption(OptionSpec.builder("--version").versionHelp(true).userObject(Launch.VERSION)
                .description("print the version").build());
        command.addPositional(Arguments.positional("request.json", 0, Path.class));
        addToHelp(command.usageMessage());
        return command;
    }

    private static void addToHelp(UsageMessageSpec help) {
        help.customSynopsis("./run [options] [request.json ...]", "       ./run SUBCOMMAND ...");
        help.commandListHeading("%nSubcommands, each with a --help of its own:%n");
        String[] examples = help.footer();
        String[] all = new String[examples.length + 2];
        System.arraycopy(examples, 0, all, 0, examples.length);
        all[examples.length] = STATUSES;
        all[examples.length + 1] = VARIABLES;
        help.footer(all);
    }

    @Override
    public int run(ParseResult line) throws MistakeException, ErrnoException, IOException {
        return new Session(Options.of(line)).run();
    }

    @Override
    public int afterDeath(ParseResult line, int exitStatus) throws IOException {
        return new PostMortem(Options.of(line), exitStatus).run();
    }
}
