package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.RunFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;
import com.orlu.orlu3rdalgoservice.tool.view.RecordingSummary;

import java.io.IOException;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.Command;
import picocli.CommandLine.Parameters;

/** The subcommand info: prints what recordings hold. */
@Command(customSynopsis = "./run info FOLDER...", footer = "  ./run info shots", description = {
    "Says what is in recordings: the request, its frames and images, how far it came.",
    GivenPaths.RECORDINGS})
final class InfoCommand implements Subcommand {
    @Parameters(paramLabel = "FOLDER", arity = "1..*", hidden = true)
    private List<Path> mFolders;

    @Override
    public int run() throws MistakeException, IOException {
        int status = Verdict.OK;
        GivenPaths.checkRead(mFolders);
        for (Path file : mFolders) {
            for (Path folder : RunFolder.in(file)) {
                try {
                    new RecordingSummary(RunFolder.read(folder, ""), System.out).print();
                } catch (MistakeException e) {
                    // The others may be whole.
                    System.out.flush();
                    System.err.println("run: " + Printable.message(e));
                    status = Verdict.REFUSED;
                }
            }
        }
        return status;
    }
}
