package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.importer.Importer;
import com.orlu.orlu3rdalgoservice.tool.importer.Notes;
import com.orlu.orlu3rdalgoservice.tool.importer.RequestWriter;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;

import picocli.CommandLine.Command;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

@Command(customSynopsis = "./run import [options] FILE... --out FILE",
        description = "Write a request file from a camera service's text dump, the JSON of a camera image "
                + "test, and DNG, JPEG, TIFF or PNG pictures. Print a note for each dropped value, with "
                + "its place and the reason (docs/importing.md).",
        footer = {"  ./run import dump.txt shot.dng --out shot.json", "  ./run shot.json"})
final class ImportCommand implements Subcommand {
    @Parameters(paramLabel = "FILE", arity = "1..*", hidden = true)
    private List<Path> mFiles;
    @Option(names = "--out", paramLabel = "FILE", required = true, description = "Write the request to FILE")
    private Path mOut;
    @Option(names = "--photo", paramLabel = "FILE", description = "Make missing inputs from this photo")
    private Path mPhoto;
    @Option(names = "--algorithms", paramLabel = "ALGORITHM", split = ",",
            completionCandidates = Candidates.Algorithms.class,
            description = "Request these algorithms, e.g. night,jpegEncode")
    private List<String> mAlgorithms = List.of();

    /** Prints notes on dropped values. Writes no file if an imported file is invalid. */
    @Override
    public int run() throws MistakeException, IOException {
        if (Files.isDirectory(mOut)) {
            throw new IllegalArgumentException("--out: expected a file, found a folder: " + mOut);
        }
        // Does not follow links: a foreign folder may contain a link to one of the user's files.
        if (Files.isSymbolicLink(mOut)) {
            throw new IllegalArgumentException("--out: expected a file, found a link: " + mOut);
        }
        for (Path file : mFiles) {
            needFile(file);
        }
        if (mPhoto != null) {
            needFile(mPhoto);
        }
        write(System.out);
        return Verdict.OK;
    }

    private void needFile(Path file) throws IOException {
        if (!Files.isRegularFile(file)) {
            throw new IllegalArgumentException(
                    (Files.exists(file) ? "expected a regular file, found another kind: "
                            : "no such file: ") + file);
        }
        if (!Files.isReadable(file)) {
            throw new IllegalArgumentException("can't be read: " + file);
        }
        if (Files.exists(mOut) && Files.isSameFile(file, mOut)) {
            throw new IllegalArgumentException("--out would overwrite the imported file " + mOut);
        }
    }

    private static void makeFolder(Path folder) {
        try {
            Files.createDirectories(folder);
        } catch (IOException e) {
            throw new IllegalArgumentException("--out: can't create the folder " + folder, e);
        }
        if (!Files.isWritable(folder)) {
            throw new IllegalArgumentException("--out: can't write into the folder " + folder);
        }
    }

    private void write(PrintStream to) throws MistakeException, IOException {
        Notes notes = new Notes();
        Importer importer = new Importer(notes);
        importer.read(mFiles);
        Path folder = mOut.toAbsolutePath().getParent();
        makeFolder(folder);
        // Checks the request before writing the file, as ./run --check does.
        String text = new RequestWriter(folder, importer).text(mFiles, mAlgorithms, mPhoto);
        RequestFileReader.check(mOut, text);
        Files.writeString(mOut, text);
        notes.lines().forEach(to::println);
        int tags = importer.frames().stream().mapToInt(frame -> frame.tags().size()).sum();
        String out = Printable.line(mOut.toString());
        to.println(out + ": " + importer.frames().size() + " frames with " + tags + " tags, "
                + importer.pictures().size() + " pictures, " + notes.count() + " notes");
        if (importer.pictures().isEmpty() && mPhoto == null) {
            to.println(out + ": no inputs; set --photo to make them from a photo");
        }
    }
}
