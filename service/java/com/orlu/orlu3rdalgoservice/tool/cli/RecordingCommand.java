package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.tool.compare.ComparisonReport;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.model.RunFolder;
import com.orlu.orlu3rdalgoservice.tool.model.Trimmer;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.run.ChildRun;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;
import com.orlu.orlu3rdalgoservice.tool.view.RecordingSummary;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Collectors;
import java.util.stream.Stream;

import picocli.CommandLine.Model.CommandSpec;
import picocli.CommandLine.ParseResult;

/** The subcommands on recordings: info, replay, trim and diff. The trials of one are TrialSession's. */
final class RecordingCommand extends Command {
    private static final int EQUAL = 0;
    private static final int DIFFERENT = 1;

    private RecordingOptions mOptions;

    /** A subcommand of one of RecordingOptions' names; with an empty phrase on it, the help leaves it out. */
    RecordingCommand(String name, String about) {
        super(name, about);
    }

    @Override
    public CommandSpec spec() {
        return RecordingOptions.spec(name());
    }

    @Override
    public Launch launch() {
        return name().equals("trials") ? Launch.ONLY_TRIALS : Launch.JAVA;
    }

    @Override
    public int run(ParseResult line) throws MistakeException, ErrnoException, IOException {
        mOptions = RecordingOptions.of(name(), line);
        return switch (name()) {
            case "info" -> info();
            case "replay" -> replay();
            case "trim" -> trim();
            case "diff" -> diff();
            default -> throw new IllegalStateException("only the launcher runs " + name());
        };
    }

    @Override
    public int afterDeath(ParseResult line, int exitStatus) throws IOException {
        Path record = RecordingOptions.of(name(), line).record;
        if (record != null) {
            PostMortem.completeRecordings(record);
        }
        throw new IllegalStateException("the process ended");
    }

    private int info() throws MistakeException, IOException {
        int status = Verdict.OK;
        for (Path file : mOptions.files) {
            for (Path folder : RunFolder.in(file)) {
                try {
                    new RecordingSummary(RunFolder.read(folder, ""), System.out).print();
                } catch (MistakeException e) {
                    // The others may be whole.
                    System.out.flush();
                    System.err.println("run: " + e.getMessage());
                    status = Verdict.REFUSED;
                }
            }
        }
        return status;
    }

    private int trim() throws MistakeException, IOException {
        Run recorded = read(only(mOptions.files.get(0)));
        Trimmer trimmer =
                new Trimmer(recorded, mOptions.frames, mOptions.keepsPixels, mOptions.crop);
        trimmer.write(mOptions.out);
        System.out.println("written " + mOptions.out + " (" + megabytes(mOptions.out) + " of "
                + megabytes(recorded.folder()) + ")");
        TextLayout notes = new TextLayout(System.out, TextLayout.REPORT);
        trimmer.notes().forEach(note -> notes.print(2, "note: " + note));
        return Verdict.OK;
    }

    private static String megabytes(Path folder) throws IOException {
        long bytes = 0;
        try (Stream<Path> files = Files.list(folder)) {
            for (Path file : files.toList()) {
                bytes += Files.size(file);
            }
        }
        return "%.2f MB".formatted(bytes / 1e6);
    }

    private static Run read(Path folder) throws MistakeException {
        return RunFolder.read(folder, folder.toString());
    }

    private int replay() throws MistakeException, IOException {
        // What can't be run again is said before a process is started for it.
        List<Run> recorded = new ArrayList<>();
        List<Path> requests = new ArrayList<>();
        for (Path file : mOptions.files) {
            for (Path folder : RunFolder.in(file)) {
                recorded.add(read(folder));
                requests.add(folder.resolve(RunFolder.REQUEST));
                checkFiles(recorded.get(recorded.size() - 1));
            }
        }
        Path library = mOptions.libraries.isEmpty() ? null : mOptions.libraries.get(0);
        int status = EQUAL;
        for (int done = 0; done < requests.size();) {
            // One process for all, and another for those after one that ended its process.
            ChildRun child = new ChildRun("replay", mOptions.arm, library);
            for (Path again : RunFolder.in(child.run(requests.subList(done, requests.size())))) {
                status = Math.max(status, replay(recorded.get(done), again));
                ++done;
            }
        }
        return status;
    }

    private static void checkFiles(Run run) throws MistakeException {
        for (List<ImageLayout> images : List.of(run.inputs(), run.outputs())) {
            for (ImageLayout image : images) {
                if (image.file() != null) {
                    image.file().check();
                }
            }
        }
    }

    private int replay(Run before, Path again) throws MistakeException, IOException {
        Run after = RunFolder.read(again, "this run");
        TextLayout to = new TextLayout(System.out, TextLayout.REPORT);
        before.notes().forEach(note -> to.print(2, "note: " + note));
        if (!before.trimmed().isEmpty()) {
            to.print(2, "note: this recording is trimmed: " + before.trimmed());
        }
        if (!before.isKnown()) {
            boolean isRight = after.isComplete() && !after.hasFailed();
            System.out.println(before.name() + ": " + (isRight ? "ran" : "went wrong") + ", "
                    + after.parameters().size() + " parameters; nothing was recorded to compare with");
            if (!isRight) {
                to.print(2, "came to " + after.outcomes());
            }
            return isRight ? EQUAL : DIFFERENT;
        }
        return compare(before.name(), before, after);
    }

    private int diff() throws MistakeException, IOException {
        List<List<Run>> sides = new ArrayList<>();
        for (int i = 0; i < 2; ++i) {
            Path library = mOptions.libraries.size() < 2 ? null : mOptions.libraries.get(i);
            sides.add(runs(mOptions.files.get(mOptions.files.size() == 1 ? 0 : i), i, library));
        }
        int common = Math.min(sides.get(0).size(), sides.get(1).size());
        int status = EQUAL;
        if (sides.get(0).size() != sides.get(1).size()) {
            List<Run> longer = sides.get(0).size() > common ? sides.get(0) : sides.get(1);
            new TextLayout(System.out, TextLayout.REPORT).print(0, "different: " + sides.get(0).size()
                    + " requests / "
                    + sides.get(1).size() + "; nothing to compare with "
                    + longer.stream().skip(common).map(Run::name).collect(Collectors.joining(", ")));
            status = DIFFERENT;
        }
        for (int i = 0; i < common; ++i) {
            Run one = sides.get(0).get(i);
            Run other = sides.get(1).get(i);
            status = Math.max(status, compare(one.name() + " / " + other.name(), one, other));
        }
        return status;
    }

    // What a side of a diff did: read, or run first.
    private List<Run> runs(Path file, int side, Path library) throws MistakeException, IOException {
        List<Path> folders;
        ChildRun child = new ChildRun("side" + (side + 1), false, library);
        if (Files.isDirectory(file)) {
            folders = library == null ? RunFolder.in(file)
                    : RunFolder.in(child.run(List.of(only(file).resolve(RunFolder.REQUEST))));
        } else if (library != null || file.toString().endsWith(".json")) {
            folders = RunFolder.in(child.run(List.of(file)));
        } else {
            return List.of(Run.ofEvents(file));
        }
        List<Run> runs = new ArrayList<>();
        for (Path folder : folders) {
            runs.add(RunFolder.read(folder, Files.isDirectory(file) ? folder.toString()
                    : library == null ? file.toString() : file + " with " + library.getFileName()));
        }
        return runs;
    }

    private int compare(String title, Run one, Run other)
            throws MistakeException, IOException {
        ComparisonReport.Options options = new ComparisonReport.Options(
                mOptions.ignored, mOptions.tolerance, mOptions.out, mOptions.explains);
        return new ComparisonReport(options, one, other).print(title) ? EQUAL : DIFFERENT;
    }

    private static Path only(Path folder) throws MistakeException, IOException {
        List<Path> folders = RunFolder.in(folder);
        if (folders.size() != 1) {
            throw new IllegalArgumentException(
                    folder + " has " + folders.size() + " recordings; name one of them");
        }
        return folders.get(0);
    }
}
