package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.ImageDifference;
import com.orlu.orlu3rdalgoservice.tool.image.OutputReader;
import com.orlu.orlu3rdalgoservice.tool.image.Picture;
import com.orlu.orlu3rdalgoservice.tool.image.PictureData;
import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.model.BaseFrame;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** What a page needs of a request's images, taken while their memory is there. */
public final class Exhibits {
    /** Bytes that the inputs' pictures may take together in a page, beside the one to compare with. */
    private static final int INPUT_BYTES = 900_000;

    private final List<Long> mChecksums = new ArrayList<>();
    private final List<ImageExhibit> mInputs = new ArrayList<>();
    private final List<ImageExhibit> mOutputs = new ArrayList<>();
    private final List<Object> mDifferences = new ArrayList<>();
    private int mBase;
    private String mNamedBy = "";
    private boolean mIsLost;

    /** To be called before the request is handed over. */
    public void before(List<ImageBuffer> inputs) {
        inputs.forEach(image -> mChecksums.add(ImageExhibit.checksum(image)));
    }

    /** Instead of the others when the process ended: the inputs made again, as they went in. */
    public void afterCrash(List<ImageBuffer> inputs) {
        mIsLost = true;
        before(inputs);
        after(new BaseFrame(0, ""), inputs, List.of(), List.of());
    }

    /** To be called after it; the outputs' readers are those of the outputs, in their order. */
    public void after(BaseFrame baseFrame, List<ImageBuffer> inputs, List<ImageBuffer> outputs,
            List<OutputReader> readers) {
        mNamedBy = baseFrame.namedBy();
        Picture base = null;
        for (int i = 0; i < inputs.size(); ++i) {
            Progress.show("drawing input " + (i + 1) + " of " + inputs.size());
            int frame = inputs.get(i).plan().frame();
            ImageExhibit input =
                    new ImageExhibit("input " + i, frame, inputs.get(i), OutputReader.of(inputs.get(i)));
            if (input.checksum() != mChecksums.get(i)) {
                input.markWritten();
            }
            if (base == null && frame == baseFrame.index() && input.picture() != null) {
                base = input.picture();
                mBase = i;
            }
            input.letPixelsGo();
            mInputs.add(input);
        }
        for (int i = 0; i < outputs.size(); ++i) {
            ImageExhibit output = new ImageExhibit("output " + i, -1, outputs.get(i), readers.get(i));
            addDifference(i, ImageDifference.of(base, output.picture()));
            output.letPixelsGo();
            mOutputs.add(output);
        }
    }

    private void addDifference(int output, ImageDifference difference) {
        if (difference == null) {
            return;
        }
        Map<String, Object> json = new LinkedHashMap<>();
        json.put("output", output);
        json.put("most", difference.most());
        if (Double.isFinite(difference.psnr())) {
            json.put("psnr", Math.round(10 * difference.psnr()) / 10.0);
        }
        json.put("amplification", ImageDifference.AMPLIFICATION);
        json.put("picture", PictureData.of(difference.picture().toImage()).uri());
        mDifferences.add(json);
    }

    List<ImageExhibit> inputs() {
        return mInputs;
    }

    public List<ImageExhibit> outputs() {
        return mOutputs;
    }

    /** The input that outputs are compared with; null when the request has none. */
    public ImageExhibit base() {
        return mInputs.isEmpty() ? null : mInputs.get(mBase);
    }

    /** Whether the outputs were lost with the process. */
    public boolean isLost() {
        return mIsLost;
    }

    /** Inputs, outputs and differences; "large" is absent where a picture is there as a small one only. */
    public Map<String, Object> json() {
        Map<String, Object> json = new LinkedHashMap<>();
        json.put("base", mBase);
        json.put("baseNamedBy", mNamedBy);
        json.put("lost", mIsLost);
        List<Object> inputs = new ArrayList<>();
        int left = INPUT_BYTES;
        for (int i = 0; i < mInputs.size(); ++i) {
            ImageExhibit input = mInputs.get(i);
            boolean isShown = input.large() != null && (i == mBase || input.large().jpeg().length <= left);
            left -= isShown && i != mBase ? input.large().jpeg().length : 0;
            inputs.add(json(input, isShown));
        }
        json.put("inputs", inputs);
        List<Object> outputs = new ArrayList<>();
        mOutputs.forEach(output -> outputs.add(json(output, output.large() != null)));
        json.put("outputs", outputs);
        json.put("differences", mDifferences);
        return json;
    }

    private static Map<String, Object> json(ImageExhibit image, boolean withLarge) {
        Map<String, Object> json = image.json();
        if (withLarge) {
            json.put("large", image.large().uri());
            json.put("largeWidth", image.large().width());
        }
        return json;
    }
}
