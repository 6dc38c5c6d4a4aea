package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.model.CropArea;

import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Set;
import java.util.TreeSet;

import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.Model.OptionSpec;
import picocli.CommandLine.ParseResult;

/** The command lines of the subcommands on recordings. */
final class RecordingOptions {
    private static final String FOLDERS =
            "FOLDER is a recording, or a folder of recordings (docs/recording.md).";

    final String command;
    final List<Path> files;
    final List<Path> libraries;
    final List<String> ignored;
    final double tolerance;
    final boolean arm;
    final Path out;
    final Path record;
    final Set<Integer> frames;
    final boolean keepsPixels;
    /** Null to keep whole images. */
    final CropArea crop;
    final boolean explains;

    private RecordingOptions(String name, ParseResult line) {
        command = name;
        files = line.matchedPositionalValue(0, List.of());
        List<Path> named = line.matchedOptionValue("--lib", List.of());
        libraries = line.hasMatchedOption("--against")
                ? List.of(line.<Path>matchedOptionValue("--against", null))
                : named;
        ignored = line.matchedOptionValue("--ignore", List.of());
        tolerance = line.matchedOptionValue("--tolerance", 0.0);
        arm = line.hasMatchedOption("--arm");
        out = line.matchedOptionValue("--out", null);
        record = line.matchedOptionValue("--record", null);
        frames = new TreeSet<>(line.matchedOptionValue("--frames", List.<Integer>of()));
        keepsPixels = !line.hasMatchedOption("--no-pixels");
        String area = line.matchedOptionValue("--crop", null);
        crop = area == null ? null : CropArea.parse(area);
        explains = !line.hasMatchedOption("--no-explain");
    }

    /** The options and arguments of the subcommand of this name. */
    static CommandSpec spec(String name) {
        return switch (name) {
            case "info" -> command("info FOLDER...", "FOLDER", Integer.MAX_VALUE,
                    List.of("Says what is in recordings: the request, its frames and images, how far it "
                            + "came.", FOLDERS), List.of("./run info shots"));
            case "replay" -> replay();
            case "trim" -> trim();
            case "diff" -> diff();
            default -> recording(command("trials REQUEST --record FILE", "REQUEST", 1,
                    List.of("Tries what each tag of a request changes."), List.of()), "FILE", Launch.JAVA);
        };
    }

    private static CommandSpec replay() {
        CommandSpec spec = command("replay [options] FOLDER...", "FOLDER", Integer.MAX_VALUE,
                List.of("Runs recordings again, and compares what they do with what was recorded. The status "
                        + "is 0 when all is equal, 1 when something is different.", FOLDERS),
                List.of("./run --record shots samples/night.json", "./run replay shots",
                        "./run replay shots --against other/liborlu.vac.interface.so"));
        spec.addOption(Arguments.path("--against", "LIBRARY",
                "run with this library: an algorithm library, or another build of the native one"));
        // The process that plays them has this option for the launcher.
        spec.addOption(Arguments.flag("--arm", "run the 32-bit ARM library"));
        addComparison(spec);
        return spec;
    }

    private static CommandSpec trim() {
        CommandSpec spec = command("trim [options] FOLDER --out DIR", "FOLDER", 1,
                List.of("Writes a smaller copy of a recording (docs/recording.md)."),
                List.of("./run trim shots/000001-request-101 --out few --frames 0,2",
                        "./run trim shots/000001-request-101 --out small --crop 320,240"));
        spec.addOption(Arguments.neededPath("--out", "DIR",
                "the folder of the copy, which must not be there"));
        spec.addOption(Arguments.list("--frames", "NUMBER", Integer.class, "keep these frames and their "
                + "inputs, and leave out what came of the request").splitRegex(",").build());
        spec.addOption(OptionSpec.builder("--crop").paramLabel("AREA").type(String.class).description(
                "keep this part of each image, WIDTH,HEIGHT of the middle or X,Y,WIDTH,HEIGHT, and leave out "
                        + "what came of the request").build());
        spec.addOption(Arguments.flag("--no-pixels", "leave the pixels out"));
        return spec;
    }

    private static CommandSpec diff() {
        CommandSpec spec = command("diff [options] A [B]", "A", 2,
                List.of("Compares two runs. A and B are recordings or folders of them, files that "
                        + "--events wrote, or request files, which are run first. The status is 0 when all "
                        + "is equal, 1 when something is different."),
                List.of("./run diff samples/night.json samples/night-async.json",
                        "./run diff samples/night.json --lib old.so --lib new.so"));
        spec.addOption(Arguments.list("--lib", "LIBRARY", Path.class,
                "given twice: run the one A, or A and B, with these two libraries").build());
        addComparison(spec);
        return spec;
    }

    private static void addComparison(CommandSpec spec) {
        spec.addOption(Arguments.flag("--no-explain",
                "don't find out because of which tags parameters differ, which takes some seconds"));
        spec.addOption(Arguments.list("--ignore", "NAME", String.class,
                "leave out this parameter, value put, call or output; can be given again").build());
        spec.addOption(OptionSpec.builder("--tolerance").paramLabel("NUMBER").type(Double.class)
                .description("take for equal what differs by no more: numbers, and samples of images from "
                        + "0 to 255").build());
        spec.addOption(Arguments.path("--out", "DIR", "write pictures of outputs that differ there"));
    }

    private static CommandSpec command(String synopsis, String label, int most, List<String> texts,
            List<String> examples) {
        CommandSpec spec = Arguments.command(synopsis, texts, examples);
        spec.addPositional(Arguments.positional(label, 1, most, Path.class));
        return spec;
    }

    private static CommandSpec recording(CommandSpec spec, String label, Launch launch) {
        spec.addOption(Arguments.neededPath("--record", label, "where to", launch));
        return spec;
    }

    /** What the arguments of the subcommand of this name say. */
    static RecordingOptions of(String name, ParseResult line) {
        return new RecordingOptions(name, line).checked();
    }

    private RecordingOptions checked() {
        List<Path> needed = new ArrayList<>(files);
        needed.addAll(libraries);
        for (Path file : needed) {
            if (!Files.exists(file)) {
                throw new IllegalArgumentException("no such file: " + file);
            }
        }
        if (tolerance < 0) {
            throw new IllegalArgumentException("--tolerance needs a NUMBER of 0 or more, found " + tolerance);
        }
        if (out != null && Files.exists(out) && !Files.isDirectory(out)) {
            throw new IllegalArgumentException("--out: needs a folder, found a file: " + out);
        }
        if (command.equals("diff") && libraries.size() != 2 && (files.size() != 2 || !libraries.isEmpty())) {
            throw new IllegalArgumentException("diff needs two runs, or --lib twice; see ./run diff --help");
        }
        return this;
    }
}
