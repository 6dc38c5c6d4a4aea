package com.orlu.orlu3rdalgoservice.tool.importer;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.tags.PixelFormat;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

/** Writes frames and pictures as the text of a request file. */
public final class RequestWriter {
    /** Number of nesting levels that are broken into lines, so that each tag has its own line. */
    private static final int SPREAD_LEVELS = 4;

    private final Path mFolder;
    private final List<ImportedFrame> mFrames;
    private final List<ImportedPicture> mPictures;

    /** Creates a writer of a request file. Names of image files are relative to `folder`. */
    public RequestWriter(Path folder, Importer imported) {
        mFolder = folder;
        mFrames = imported.frames();
        mPictures = imported.pictures();
    }

    /**
     * Returns the request file's text. If there are no pictures, the inputs are made from `photo`. If `photo`
     * is null too, the request has no inputs and no outputs.
     */
    public String text(List<Path> sources, List<String> algorithms, Path photo) {
        Map<String, Object> request = JsonWriter.object("about", "Imported from " + sources.stream()
                .map(source -> source.getFileName().toString()).collect(Collectors.joining(", ")),
                "request", JsonWriter.object("id", 1, "type", "capture"));
        if (!algorithms.isEmpty()) {
            request.put("algorithms", algorithms);
        }
        if (mPictures.isEmpty() && photo != null) {
            request.put("photo", ImportedPicture.relative(mFolder, photo));
        }
        request.put("frames", mFrames.stream().map(frame -> JsonWriter.object("captureResult", frame.tags()))
                .toList());
        if (mPictures.isEmpty()) {
            request.put("inputs", photo == null ? List.of() : image(PixelFormat.NV21));
        } else {
            request.put("inputs", inputs());
        }
        boolean hasImages = !mPictures.isEmpty() || photo != null;
        request.put("outputs", hasImages ? List.of(output(algorithms)) : List.of());
        return JsonWriter.pretty(request, SPREAD_LEVELS);
    }

    private List<Object> inputs() {
        List<Object> inputs = new ArrayList<>();
        for (int i = 0; i < mPictures.size(); ++i) {
            inputs.add(mPictures.get(i).input(mFolder, Math.min(i, mFrames.size() - 1)));
        }
        return inputs;
    }

    // The output is a JPEG if jpegEncode is requested, else it has the first input's format.
    private Object output(List<String> algorithms) {
        return image(algorithms.contains("jpegEncode") ? PixelFormat.JPEG
                : mPictures.isEmpty() ? PixelFormat.NV21 : mPictures.get(0).format());
    }

    private static Object image(PixelFormat format) {
        return JsonWriter.object("format", format.name());
    }
}
