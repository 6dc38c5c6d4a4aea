package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.CropArea;
import com.orlu.orlu3rdalgoservice.tool.model.PrivateFacts;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.model.RunFolder;
import com.orlu.orlu3rdalgoservice.tool.model.Trimmer;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.TreeSet;
import java.util.stream.Stream;

import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

@Command(customSynopsis = "./run trim [options] FOLDER --out DIR",
        description = "Write a smaller copy of a recording (docs/recording.md). With --frames, --crop or "
                + "--private, the copy has no results.",
        footer = {"  ./run trim shots/000001-request-101 --out few --frames 0,2",
            "  ./run trim shots/000001-request-101 --out small --crop 320,240"})
final class TrimCommand implements Subcommand {
    @Parameters(paramLabel = "FOLDER", index = "0", hidden = true)
    private Path mFolder;
    @Option(names = "--out", paramLabel = "DIR", required = true,
            description = "Write the copy to DIR, which must not exist")
    private Path mOut;
    @Option(names = "--frames", paramLabel = "NUMBER", split = ",",
            description = "Keep these frames and their inputs")
    private List<Integer> mFrames = List.of();
    @Option(names = "--crop", paramLabel = "AREA",
                description = "Crop images to WIDTH,HEIGHT around the centre, or to X,Y,WIDTH,HEIGHT")
    private String mCrop;
    @Option(names = "--no-pixels", description = "Omit the pixels")
    private boolean mLeavesPixels;
    @Option(names = "--private", description = "Omit places, times of day, faces, long texts and EXIF blocks")
    private boolean mIsPrivate;
    @Option(names = "--faces", description = "With --private: keep faces")
    private boolean mKeepsFaces;

    @Override
    public int run() throws MistakeException, IOException {
        CropArea crop = mCrop == null ? null : CropArea.parse(mCrop);
        if (mKeepsFaces && !mIsPrivate) {
            throw new IllegalArgumentException("--faces requires --private");
        }
        GivenPaths.checkRead(List.of(mFolder));
        new GivenPaths().folder("--out", mOut);
        Path folder = RunFolder.only(mFolder);
        Run recorded = RunFolder.read(folder, folder.toString());
        Trimmer trimmer = new Trimmer(recorded, new TreeSet<>(mFrames), !mLeavesPixels, crop,
                mIsPrivate ? new PrivateFacts(mKeepsFaces) : null);
        trimmer.write(mOut);
        System.out.println("written " + Printable.line(mOut.toString()) + " (" + megabytes(mOut) + " of "
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
}
