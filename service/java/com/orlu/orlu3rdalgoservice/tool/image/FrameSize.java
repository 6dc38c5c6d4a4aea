package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.List;

/**
 * The size of images that have no size of their own. If the frames are made from a photo, it is their size.
 * Otherwise it is the size of the first input, or the frame size in the request file if there is no input or
 * if the first input is to be made from a photo.
 */
public record FrameSize(int width, int height) {
    public static FrameSize of(RequestFile request, List<SynthesisedFrame> frames) {
        if (!frames.isEmpty()) {
            return new FrameSize(frames.get(0).shot().width(), frames.get(0).shot().height());
        }
        if (!request.inputs().isEmpty() && !request.inputs().get(0).isOfPhoto()) {
            return new FrameSize(request.inputs().get(0).width(), request.inputs().get(0).height());
        }
        return new FrameSize(request.frames().width(), request.frames().height());
    }

    /** Returns the image, with this size if it has none. Throws if its stride is less than a row's bytes. */
    public ImagePlan applyTo(ImagePlan plan) throws MistakeException {
        return plan.sized(width, height);
    }
}
