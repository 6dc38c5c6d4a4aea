package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.ImageDifference;
import com.orlu.orlu3rdalgoservice.tool.image.OutputReader;
import com.orlu.orlu3rdalgoservice.tool.image.PictureData;
import com.orlu.orlu3rdalgoservice.tool.image.PixelRows;
import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.model.BaseFrame;

import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.concurrent.atomic.AtomicInteger;
import java.util.stream.IntStream;

/** The image data that a page needs, collected while the images' memory exists. */
public final class Exhibits {
    /** Limit for all large pictures of inputs in a page, in bytes. The base frame's pictures don't count. */
    private static final int INPUT_BYTES = 900_000;

    private final List<Long> mChecksums = new ArrayList<>();
    private final List<ImageExhibit> mInputs = new ArrayList<>();
    private final List<ImageExhibit> mOutputs = new ArrayList<>();
    private final List<Object> mDifferences = new ArrayList<>();
    private int mBase;
    private boolean mHasBase;
    private String mNamedBy = "";
    private boolean mIsLost;

    /** Stores the inputs' checksums. Call before the request is submitted. */
    public void before(List<ImageBuffer> inputs) {
        inputs.forEach(image -> mChecksums.add(ImageExhibit.checksum(image)));
    }

    /** Call instead of before() and after() if the process died, because only the inputs are known. */
    public void afterCrash(List<ImageBuffer> inputs) {
        mIsLost = true;
        before(inputs);
        after(new BaseFrame(0, ""), inputs, List.of(), List.of());
    }

    /**
     * Draws all pictures and compares the outputs with the base frame. Call after the request. `readers` are
     * the readers of `outputs`, in the same order.
     */
    public void after(BaseFrame baseFrame, List<ImageBuffer> inputs, List<ImageBuffer> outputs,
            List<OutputReader> readers) {
        mNamedBy = baseFrame.namedBy();
        int perInput = Math.min(PictureData.LARGEST, INPUT_BYTES / Math.max(1, inputs.size() - 1));
        int total = inputs.size() + outputs.size();
        AtomicInteger done = new AtomicInteger();
        Progress.show("drawing pictures", 0, total);
        List<ImageExhibit> all = IntStream.range(0, total).parallel().mapToObj(i -> {
            ImageExhibit exhibit = i >= inputs.size()
                    ? output(i - inputs.size(), outputs, readers) : input(i, inputs, baseFrame, perInput);
            Progress.show("drawing pictures", done.incrementAndGet(), total);
            return exhibit;
        }).toList();
        mInputs.addAll(all.subList(0, inputs.size()));
        mOutputs.addAll(all.subList(inputs.size(), total));
        mBase = Math.max(0, IntStream.range(0, inputs.size()).filter(i ->
                mInputs.get(i).frame() == baseFrame.index() && mInputs.get(i).picture() != null)
                .findFirst().orElse(-1));
        PixelRows base = mInputs.isEmpty() || mInputs.get(mBase).frame() != baseFrame.index() ? null
                : mInputs.get(mBase).picture();
        mHasBase = base != null;
        for (int i = 0; i < outputs.size(); ++i) {
            addDifference(i, ImageDifference.of(base, mOutputs.get(i).picture()));
            mOutputs.get(i).letPixelsGo();
        }
        mInputs.forEach(ImageExhibit::letPixelsGo);
    }

    private ImageExhibit input(int index, List<ImageBuffer> inputs, BaseFrame base, int most) {
        ImageBuffer image = inputs.get(index);
        int frame = image.plan().frame();
        ImageExhibit input = new ImageExhibit("input " + index, frame, image, OutputReader.of(image),
                frame == base.index() ? PictureData.LARGEST : most);
        if (input.checksum() != mChecksums.get(index)) {
            input.markWritten();
        }
        if (frame != base.index()) {
            input.letPixelsGo();
        }
        return input;
    }

    private static ImageExhibit output(int index, List<ImageBuffer> outputs, List<OutputReader> readers) {
        return new ImageExhibit(
                "output " + index, -1, outputs.get(index), readers.get(index), PictureData.LARGEST);
    }

    private void addDifference(int output, ImageDifference difference) {
        if (difference == null) {
            return;
        }
        Map<String, Object> json = JsonWriter.object("output", output, "most", difference.most());
        if (Double.isFinite(difference.psnr())) {
            json.put("psnr", Math.round(10 * difference.psnr()) / 10.0);
        }
        json.put("amplification", ImageDifference.AMPLIFICATION);
        json.put("picture", PictureData.of(difference.picture()).uri());
        mDifferences.add(json);
    }

    List<ImageExhibit> inputs() {
        return mInputs;
    }

    public List<ImageExhibit> outputs() {
        return mOutputs;
    }

    /**
     * Returns the base frame's input; the first input if no input of the base frame has a picture; null
     * without inputs.
     */
    public ImageExhibit base() {
        return mInputs.isEmpty() ? null : mInputs.get(mBase);
    }

    /** Returns whether the outputs were lost with the process. */
    public boolean isLost() {
        return mIsLost;
    }

    /** Returns inputs, outputs and differences. An image without a large picture has no field "large". */
    public Map<String, Object> json() {
        return JsonWriter.object("base", mBase, "hasBase", mHasBase, "baseNamedBy", mNamedBy,
                "lost", mIsLost,
                "inputs", mInputs.stream().map(ImageExhibit::json).toList(),
                "outputs", mOutputs.stream().map(ImageExhibit::json).toList(),
                "differences", mDifferences);
    }
}
