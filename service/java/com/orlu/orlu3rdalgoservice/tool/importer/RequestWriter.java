package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Collectors;

/** Writes frames and pictures as the text of a request file, one tag per line. */
public final class RequestWriter {
    private final Path mFolder;
    private final List<ImportedFrame> mFrames;
    private final List<ImportedPicture> mPictures;

    /** Writes for a request file in this folder. */
    public RequestWriter(Path folder, Importer imported) {
        mFolder = folder;
        mFrames = imported.frames();
        mPictures = imported.pictures();
    }

    /** Returns the text. Without pictures, inputs are made from the photo, which may be null. */
    public String text(List<Path> sources, List<String> algorithms, Path photo) {
        List<String> members = new ArrayList<>();
        members.add(member("about", "Imported from " + sources.stream()
                .map(source -> source.getFileName().toString()).collect(Collectors.joining(", "))));
        members.add("\"request\": {\"id\": 1, \"type\": \"capture\"}");
        if (!algorithms.isEmpty()) {
            members.add(member("algorithms", algorithms));
        }
        if (mPictures.isEmpty() && photo != null) {
            members.add(member("photo", ImportedPicture.relative(mFolder, photo)));
        }
        members.add("\"frames\": [\n" + mFrames.stream().map(RequestWriter::frame)
                .collect(Collectors.joining(",\n")) + "\n  ]");
        members.addAll(images(algorithms, photo));
        return "{\n  " + String.join(",\n  ", members) + "\n}\n";
    }

    private static String member(String name, Object value) {
        return JsonWriter.line(name) + ": " + JsonWriter.line(value);
    }

    private static String frame(ImportedFrame frame) {
        List<String> tags = new ArrayList<>();
        frame.tags().forEach((tag, value) -> tags.add("      " + JsonWriter.line(tag) + ": " + value));
        return "    {\"captureResult\": {\n" + String.join(",\n", tags) + "\n    }}";
    }

    // The output has the input's format, or is a JPEG if one is asked for.
    private List<String> images(List<String> algorithms, Path photo) {
        List<Object> inputs = new ArrayList<>();
        for (int i = 0; i < mPictures.size(); ++i) {
            inputs.add(mPictures.get(i).input(mFolder, Math.min(i, mFrames.size() - 1)));
        }
        PixelFormat format = mPictures.isEmpty() ? PixelFormat.NV21 : mPictures.get(0).format();
        Object image = image(format);
        if (mPictures.isEmpty() && photo == null) {
            return List.of(member("inputs", inputs), member("outputs", List.of()));
        }
        List<Object> outputs =
                List.of(algorithms.contains("jpegEncode") ? image(PixelFormat.JPEG) : image);
        return List.of(member("inputs", mPictures.isEmpty() ? image : inputs), member("outputs", outputs));
    }

    private static Object image(PixelFormat format) {
        return JsonWriter.object("format", format.name());
    }
}
