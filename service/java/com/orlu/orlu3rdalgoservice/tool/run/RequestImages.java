package com.orlu.orlu3rdalgoservice.tool.run;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSize;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSynthesis;
import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.Photos;
import com.orlu.orlu3rdalgoservice.tool.image.Picture;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;
import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.ArrayList;
import java.util.List;

/** Creates the images and compositions of a request. Every process creates the same ones from a request. */
public final class RequestImages {
    private RequestImages() {
    }

    /**
     * Returns the frames made from the photo; none if no input needs them. Throws if the photo can't be used
     * or an image's stride is too small.
     */
    public static List<SynthesisedFrame> frames(RequestFile request, Photos photos)
            throws MistakeException {
        List<SynthesisedFrame> frames = request.needsPhoto() ? synthesised(request, photos) : List.of();
        FrameSize size = FrameSize.of(request, frames);
        for (ImagePlan image : request.inputs()) {
            size.applyTo(image);
        }
        for (ImagePlan image : request.outputs()) {
            size.applyTo(image);
        }
        return frames;
    }

    private static List<SynthesisedFrame> synthesised(RequestFile request, Photos photos)
            throws MistakeException {
        Picture photo = photos.load(request.photo());
        if (photo == null) {
            throw request.place().error("photo", "can't read the photo " + request.photo());
        }
        boolean raw = request.inputs().stream().anyMatch(
                image -> image.isOfPhoto() && image.format().isRaw());
        return new FrameSynthesis(request.frames(), raw).frames(request.place(), photo);
    }

    /** Creates an input from these frames or from its file. The caller closes it. */
    public static ImageBuffer input(ImagePlan plan, List<SynthesisedFrame> frames, FrameSize size)
            throws ErrnoException, MistakeException {
        return plan.isOfPhoto()
                ? ImageBuffer.holding(frames.get(plan.frame()).shot(), size.applyTo(plan))
                : plan.layout() != null ? ImageBuffer.recorded(plan) : ImageBuffer.ofFile(plan);
    }

    /** Creates the outputs and adds them to `to`. The caller closes them, even after an exception. */
    static void addOutputs(RequestFile request, FrameSize size, List<ImageBuffer> to)
            throws ErrnoException, MistakeException {
        for (ImagePlan plan : request.outputs()) {
            to.add(plan.layout() == null ? ImageBuffer.empty(size.applyTo(plan))
                    : ImageBuffer.recorded(plan));
        }
    }

    /** Returns the images' descriptors. The list is mutable, because the call that gets it may change it. */
    static List<VImageIPC> descriptors(List<ImageBuffer> images) {
        return new ArrayList<>(images.stream().map(ImageBuffer::descriptor).toList());
    }

    static List<RecordedComposition> compositions(RequestFile request) {
        List<RecordedComposition> compositions = new ArrayList<>();
        for (FramePlan frame : request.frames().frames()) {
            RecordedComposition composition = new RecordedComposition(frame.captureResult());
            frame.composition().forEach(composition::putMetadata);
            compositions.add(composition);
        }
        return compositions;
    }
}
