package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.PrivateFacts;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.model.RunFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;
import com.orlu.orlu3rdalgoservice.tool.view.RecordingSummary;

import java.io.IOException;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

@Command(customSynopsis = "./run info FOLDER...", footer = "  ./run info shots", description = {
    "Print what recordings contain: the request, its frames and images, and how far it got.",
    GivenPaths.RECORDINGS})
final class InfoCommand implements Subcommand {
    @Parameters(paramLabel = "FOLDER", arity = "1..*", hidden = true)
    private List<Path> mFolders;
    @Option(names = "--private", description = "Print only what identifies a person or a machine")
    private boolean mIsPrivate;

    @Override
    public int run() throws MistakeException, IOException {
        int status = Verdict.OK;
        GivenPaths.checkRead(mFolders);
        for (Path file : mFolders) {
            for (Path folder : RunFolder.in(file)) {
                try {
                    Run run = RunFolder.read(folder, "");
                    if (mIsPrivate) {
                        printPrivate(run);
                    } else {
                        new RecordingSummary(run, System.out).print();
                    }
                } catch (MistakeException e) {
                    // The other recordings may be intact.
                    System.out.flush();
                    System.err.println(Printable.error(e));
                    status = Verdict.REFUSED;
                }
            }
        }
        return status;
    }

    private static void printPrivate(Run run) throws MistakeException {
        PrivateFacts facts = new PrivateFacts(false);
        facts.findAll(run);
        boolean isPlain = facts.lines().isEmpty();
        System.out.println(Printable.line(
                run.folder() + (isPlain ? ": nothing found outside the pixels" : "")));
        TextLayout lines = new TextLayout(System.out, TextLayout.REPORT);
        facts.lines().forEach(line -> lines.print(2, line));
    }
}
