package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.tool.imagefile.PictureFile;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.FrameSetPlan;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import java.util.function.Supplier;

/**
 * Makes a request's frames from one photo. Each frame is a shifted part of the photo with blur, gain and
 * noise. The scaled photo is larger than a frame by a margin on each side, so that no shift moves a frame
 * beyond the photo's edge. The same seed makes the same frames.
 */
public final class FrameSynthesis {
    private static final long FRAME_PRIME = 1_000_003;
    // Sizes derived from the photo are multiples of this: packed raw formats store groups of four samples.
    private static final int GROUP = 4;
    // Seven frames of a phone's full photo would not fit into the memory of a small machine.
    private static final int LARGEST_SIDE = 2048;

    private final FrameSetPlan mPlan;
    private final boolean mKeepMosaicPhase;

    /** With `keepMosaicPhase`, all random shifts are even. */
    public FrameSynthesis(FrameSetPlan plan, boolean keepMosaicPhase) {
        mPlan = plan;
        mKeepMosaicPhase = keepMosaicPhase;
    }

    /** Returns the photo; null if it can't be decoded. */
    public static Picture load(Path photo) {
        try {
            return Picture.of(new ImageRows(PictureFile.open(photo).decode()));
        } catch (IOException e) {
            return null;
        }
    }

    /** Returns all frames. Throws MistakeException if size() does. */
    public List<SynthesisedFrame> frames(Json file, Picture photo) throws MistakeException {
        FrameSize size = size(file, photo);
        FrameSize part = partSize(photo);
        Picture sized = part.width() == photo.width() && part.height() == photo.height() ? photo
                : photo.scaledTo(part.width(), part.height());
        List<SynthesisedFrame> frames = new ArrayList<>();
        for (int i = 0; i < mPlan.frames().size(); ++i) {
            Progress.show("making frames", i, mPlan.frames().size());
            frames.add(frame(i, sized, size.width(), size.height()));
        }
        return frames;
    }

    /**
     * Returns the frames' size. Throws MistakeException if a side has fewer than four pixels, for example
     * because the photo is too small for the shifts.
     */
    public FrameSize size(Json file, Picture photo) throws MistakeException {
        if (mPlan.width() > 0) {
            return checked(file, mPlan.width(), mPlan.height());
        }
        FrameSize part = partSize(photo);
        int margins = 2 * mPlan.margin();
        return checked(file, (part.width() - margins) / GROUP * GROUP,
                (part.height() - margins) / GROUP * GROUP);
    }

    private static FrameSize checked(Json file, int width, int height) throws MistakeException {
        if (width < GROUP || height < GROUP) {
            throw file.error("photo", "too small for the frames' shifts");
        }
        return new FrameSize(width, height);
    }

    // The size that the photo is scaled to, margins included.
    private FrameSize partSize(Picture photo) {
        int margins = 2 * mPlan.margin();
        if (mPlan.width() > 0) {
            return new FrameSize(mPlan.width() + margins, mPlan.height() + margins);
        }
        int side = Math.max(photo.width(), photo.height());
        return side <= LARGEST_SIDE ? new FrameSize(photo.width(), photo.height())
                : new FrameSize(scaled(photo.width(), side), scaled(photo.height(), side));
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

    // The first frame is shifted only if it has an explicit shift.
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
