package com.orlu.orlu3rdalgoservice.tool.run;

import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.Mosaic;
import com.orlu.orlu3rdalgoservice.tool.image.OutputReader;
import com.orlu.orlu3rdalgoservice.tool.image.PixelRows;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;

import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.nio.ByteBuffer;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/** Writes files with a request's output images, and with its base frame for comparison. */
public final class OutputImages {
    private final Path mFolder;
    private final String mName;

    /** Files are written to `folder`; their names begin with `name`. */
    public OutputImages(Path folder, String name) {
        mFolder = folder;
        mName = name;
    }

    /** Writes the images and returns one line about each. `base` is the base frame's index. */
    public List<String> write(int base, List<SynthesisedFrame> frames, List<ImageBuffer> inputs,
            List<OutputReader> outputs) throws IOException {
        Files.createDirectories(mFolder);
        List<String> lines = new ArrayList<>();
        for (ImageBuffer input : inputs) {
            if (lines.isEmpty() && input.plan().frame() == base) {
                String file = !input.plan().isOfPhoto() ? write(OutputReader.of(input), mName + "-base")
                        : writePng(frames.get(base).shot(), mName + "-base");
                lines.add(file + " (input frame " + base + ")");
            }
        }
        for (int i = 0; i < outputs.size(); ++i) {
            lines.add(write(outputs.get(i), mName + "-out" + i));
        }
        return lines;
    }

    private String write(OutputReader output, String name) throws IOException {
        if (output.jpeg() != null) {
            Path file = file(name + ".jpg");
            Files.write(file, output.jpeg());
            return file + " (" + output.jpeg().length + " bytes)";
        }
        if (output.mosaic() != null) {
            Path file = file(name + ".pgm");
            Files.write(file, pgm(output.mosaic()));
            return file + " (raw mosaic)";
        }
        if (output.picture() == null) {
            return name + ": not written, the image is " + output.problem();
        }
        return writePng(output.picture(), name);
    }

    private String writePng(PixelRows picture, String name) throws IOException {
        Path file = file(name + ".png");
        picture.writePng(file);
        return file.toString();
    }

    // Returns the path of a file to write. Removes a symbolic link at this path: in an untrusted folder, the
    // link may point to one of the user's files.
    private Path file(String name) throws IOException {
        Path file = mFolder.resolve(name);
        if (Files.isSymbolicLink(file)) {
            Files.delete(file);
        }
        return file;
    }

    // Returns a PGM file with sixteen bits per sample, most significant byte first, as PGM requires.
    private static byte[] pgm(Mosaic mosaic) {
        // With a white level below 256, the format requires one byte per sample.
        int white = Math.max(256, mosaic.white());
        String header = "P5\n" + mosaic.width() + " " + mosaic.height() + "\n" + white + "\n";
        ByteArrayOutputStream bytes = new ByteArrayOutputStream();
        bytes.writeBytes(header.getBytes(StandardCharsets.US_ASCII));
        ByteBuffer samples = ByteBuffer.allocate(mosaic.samples().length * Short.BYTES);
        for (int sample : mosaic.samples()) {
            samples.putShort((short) sample);
        }
        bytes.writeBytes(samples.array());
        return bytes.toByteArray();
    }
}
