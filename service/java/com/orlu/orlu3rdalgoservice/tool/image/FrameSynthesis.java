package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.FrameSetPlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileException;

import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import java.util.function.Supplier;

import javax.imageio.ImageIO;

/**
 * Makes a request's frames of one photo: each is a part of it, moved by a small shift, blurred, brightened or
 * darkened, and with noise. The parts are smaller than the photo by the largest shift, so that no frame has
 * borders. The same seed makes the same frames.
 */
public final class FrameSynthesis {
    private static final long FRAME_PRIME = 1_000_003;
    // Frames end on whole groups of four samples, which packed raw rows come in.
    private static final int GROUP = 4;
    // Seven frames of a phone's photo in full would not fit into the memory of a small machine.
    private static final int LARGEST_SIDE = 2048;

    private final FrameSetPlan mPlan;
    private final boolean mKeepMosaicPhase;

    /** With the mosaic's phase to be kept, all shifts drawn are even. */
    public FrameSynthesis(FrameSetPlan plan, boolean keepMosaicPhase) {
        mPlan = plan;
        mKeepMosaicPhase = keepMosaicPhase;
    }

    /** The photo, null when it can't be read as one. */
    public static Picture load(Path photo) {
        try {
            BufferedImage image = ImageIO.read(photo.toFile());
            return image == null ? null : Picture.of(image);
        } catch (IOException e) {
            return null;
        }
    }

    /** All frames of a photo. A photo too small for the shifts is a RequestFileException. */
    public List<SynthesisedFrame> frames(Path file, Picture photo) throws RequestFileException {
        int margin = mPlan.margin();
        Picture sized = sized(photo, margin);
        int width = (sized.width() - 2 * margin) / GROUP * GROUP;
        int height = (sized.height() - 2 * margin) / GROUP * GROUP;
        if (mPlan.width() > 0) {
            width = mPlan.width();
            height = mPlan.height();
        }
        if (width < GROUP || height < GROUP) {
            throw new RequestFileException(file.toString(), "photo", "too small for the frames' shifts");
        }
        List<SynthesisedFrame> frames = new ArrayList<>();
        for (int i = 0; i < mPlan.frames().size(); ++i) {
            Progress.show("making frame " + (i + 1) + " of " + mPlan.frames().size());
            frames.add(frame(i, sized, width, height));
        }
        return frames;
    }

    private Picture sized(Picture photo, int margin) {
        if (mPlan.width() > 0) {
            return photo.scaledTo(mPlan.width() + 2 * margin, mPlan.height() + 2 * margin);
        }
        int side = Math.max(photo.width(), photo.height());
        return side <= LARGEST_SIDE ? photo : photo.scaledTo(
                scaled(photo.width(), side), scaled(photo.height(), side));
    }

    private static int scaled(int length, int side) {
        return (int) Math.max(1, (long) length * LARGEST_SIDE / side);
    }

    private SynthesisedFrame frame(int index, Picture photo, int width, int height) {
        FramePlan plan = mPlan.frames().get(index);
        Random random = new Random(mPlan.seed() * FRAME_PRIME + index);
        int[] shift = shift(index, plan, random);
        int margin = mPlan.margin();
        Supplier<Picture> clean = () -> photo.crop(margin + shift[0], margin + shift[1], width, height);
        Picture shot = plan.blur() > 0 ? clean.get().blurred(plan.blur()) : clean.get();
        shot = plan.gain() != 1 ? shot.brightened(plan.gain()) : shot;
        shot = plan.noise() > 0 ? shot.withNoise(plan.noise(), random) : shot;
        return new SynthesisedFrame(clean, shot);
    }

    // The first frame stays where it is, unless its own shift says otherwise.
    private int[] shift(int index, FramePlan plan, Random random) {
        if (plan.shift() != null) {
            return plan.shift();
        }
        return index == 0 ? new int[2] : new int[] {draw(random), draw(random)};
    }

    private int draw(Random random) {
        int step = mKeepMosaicPhase ? 2 : 1;
        int steps = mPlan.maxShift() / step;
        return step * (random.nextInt(2 * steps + 1) - steps);
    }
}
