package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.json.Json;

import java.nio.file.Path;
import java.util.List;
import java.util.Map;

/**
 * A request file, read and checked.
 *
 * @param about       one line for people
 * @param imageFormat the image format passed when the client is released, as the platform's number
 * @param properties  system properties to set before the request
 * @param fullAsync   whether processing returns before the algorithms are done
 * @param photo       the photo that the frames are made from; null if none is given
 * @param frames      the frames' metadata, and how the frames are made from the photo
 * @param inputs      the input images; images of size 0 get the frames' size
 * @param outputs     the output images; images of size 0 get the frames' size
 * @param place       the whole file as JSON, for positions in error messages
 */
public record RequestFile(Path file, String about, long id, String type, long clientId, int algoContextIndex,
        int imageFormat, Map<String, String> properties, boolean fullAsync, Path photo, FrameSetPlan frames,
        List<ImagePlan> inputs, List<ImagePlan> outputs, Json place) {
    /** The same request under the name of another file. */
    public RequestFile shownAs(Path other) {
        return new RequestFile(other, about, id, type, clientId, algoContextIndex, imageFormat, properties,
                fullAsync, photo, frames, inputs, outputs, place);
    }

    /** Whether any input is made from the photo. */
    public boolean needsPhoto() {
        return inputs.stream().anyMatch(ImagePlan::isOfPhoto);
    }

    /** Whether a frame has an input made from the photo. Other frames can't be compared with the photo. */
    public boolean isOfPhoto(int frame) {
        return inputs.stream().anyMatch(image -> image.isOfPhoto() && image.frame() == frame);
    }
}
