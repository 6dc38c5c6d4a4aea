package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.model.RunFolder;
import com.orlu.orlu3rdalgoservice.tool.run.ChildRun;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Collectors;

import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

@Command(customSynopsis = "./run diff [options] A [B]",
        description = "Compare two runs. A and B are recordings or folders of them, files that --events "
                + "wrote, or request files, which are run first. The exit status is 0 if all is equal and "
                + "1 if something differs.",
        footer = {"  ./run diff samples/night.json samples/night-async.json",
            "  ./run diff samples/night.json --lib old.so --lib new.so"})
final class DiffCommand implements Subcommand {
    private static final int SIDES = 2;

    @Parameters(paramLabel = "A", index = "0..1", arity = "1..2", hidden = true)
    private List<Path> mFiles;
    @Option(names = "--lib", paramLabel = "LIBRARY",
            description = "Run A with the first library, and B (or A again) with the second; "
                    + "specify --lib twice")
    private List<Path> mLibraries = List.of();
    @Mixin
    private RunComparison mComparison;

    @Override
    public int run() throws MistakeException, IOException {
        GivenPaths.checkRead(mFiles);
        GivenPaths.checkRead(mLibraries);
        mComparison.begin("diff");
        if (mLibraries.size() != SIDES && (mFiles.size() != SIDES || !mLibraries.isEmpty())) {
            throw new IllegalArgumentException("expected two runs, or --lib twice; see ./run diff --help");
        }
        List<Run> left = runs(0);
        List<Run> right = runs(1);
        int common = Math.min(left.size(), right.size());
        if (left.size() != right.size()) {
            String further = (left.size() > common ? left : right).stream().skip(common).map(Run::name)
                    .collect(Collectors.joining(", "));
            String text =
                    left.size() + " requests / " + right.size() + "; nothing to compare with " + further;
            new TextLayout(mComparison.text(), TextLayout.REPORT).print(0, "different: " + text);
            mComparison.add(further, List.of(text));
        }
        for (int i = 0; i < common; ++i) {
            String title = left.get(i).name() + " / " + right.get(i).name();
            mComparison.print(title, left.get(i), right.get(i));
        }
        return mComparison.finish();
    }

    // Returns the runs of side 0 (A) or 1 (B, or A again). Reads the runs from recordings or a file of
    // events; with a request file or --lib, runs the request first.
    private List<Run> runs(int side) throws MistakeException, IOException {
        Path file = mFiles.get(Math.min(side, mFiles.size() - 1));
        Path library = mLibraries.isEmpty() ? null : mLibraries.get(side);
        boolean isFolder = Files.isDirectory(file);
        if (!isFolder && library == null && !file.toString().endsWith(".json")) {
            return List.of(Run.ofEvents(file));
        }
        List<Path> folders;
        if (isFolder && library == null) {
            folders = RunFolder.in(file);
        } else {
            Path request = isFolder ? RunFolder.only(file).resolve(RunFolder.REQUEST) : file;
            folders = RunFolder.in(new ChildRun("side" + (side + 1), false, library).run(List.of(request)));
        }
        List<Run> runs = new ArrayList<>();
        for (Path folder : folders) {
            runs.add(RunFolder.read(folder, isFolder ? folder.toString()
                    : library == null ? file.toString() : file + " with " + library.getFileName()));
        }
        return runs;
    }
}
