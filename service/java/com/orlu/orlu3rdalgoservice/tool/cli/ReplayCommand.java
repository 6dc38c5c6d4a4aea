package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.model.RunFolder;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.run.ChildRun;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

@Command(customSynopsis = "./run replay [options] FOLDER...",
        description = {"Run recordings again and compare the results with the recorded ones. The exit status "
                + "is 0 if all are equal and 1 if something differs.", GivenPaths.RECORDINGS},
        footer = {"  ./run --record shots samples/night.json", "  ./run replay shots",
            "  ./run replay shots --against other/liborlu.vac.interface.so"})
final class ReplayCommand implements Subcommand {
    @Parameters(paramLabel = "FOLDER", arity = "1..*", hidden = true)
    private List<Path> mFolders;
    @Option(names = "--against", paramLabel = "LIBRARY",
            description = "Run with this algorithm or native library")
    private Path mLibrary;
    // ChildRun passes this option on to the launcher of its process.
    @Option(names = "--arm", description = "Run the 32-bit ARM library")
    private boolean mArm;
    @Mixin
    private RunComparison mComparison;

    @Override
    public int run() throws MistakeException, IOException {
        GivenPaths.checkRead(mFolders);
        GivenPaths.checkRead(mLibrary == null ? List.of() : List.of(mLibrary));
        mComparison.begin("replay");
        // Recordings that can't be run again are reported before any process starts.
        List<Run> recorded = new ArrayList<>();
        List<Path> requests = new ArrayList<>();
        for (Path file : mFolders) {
            for (Path folder : RunFolder.in(file)) {
                recorded.add(RunFolder.read(folder, folder.toString()));
                requests.add(folder.resolve(RunFolder.REQUEST));
                checkFiles(recorded.get(recorded.size() - 1));
            }
        }
        for (int done = 0; done < requests.size();) {
            // A child process runs all remaining requests. If it crashes, another runs those after the crash.
            ChildRun child = new ChildRun("replay", mArm, mLibrary);
            for (Path again : RunFolder.in(child.run(requests.subList(done, requests.size())))) {
                compare(recorded.get(done), RunFolder.read(again, "this run"));
                ++done;
            }
        }
        return mComparison.finish();
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

    private void compare(Run before, Run after) throws MistakeException, IOException {
        TextLayout to = new TextLayout(mComparison.text(), TextLayout.REPORT);
        before.notes().forEach(note -> to.print(2, "note: " + note));
        if (!before.trimmed().isEmpty()) {
            to.print(2, "note: this recording is trimmed: " + before.trimmed());
        }
        if (before.isKnown()) {
            mComparison.print(before.name(), before, after);
            return;
        }
        boolean isRight = after.isComplete() && !after.hasFailed();
        mComparison.text().println(Printable.line(before.name()) + ": " + (isRight ? "ran" : "failed")
                + ", " + after.parameters().size() + " parameters; the recording has no results to compare");
        String outcome = "outcome: " + after.outcomes();
        if (!isRight) {
            to.print(2, outcome);
        }
        mComparison.add(before.name(), isRight ? List.of() : List.of(outcome));
    }
}
