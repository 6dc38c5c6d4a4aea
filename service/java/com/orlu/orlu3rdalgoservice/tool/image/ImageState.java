package com.orlu.orlu3rdalgoservice.tool.image;

import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;

import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.Map;

/** A copy of an image's description, to see what the native side changes in it. */
public final class ImageState {
    private final Map<String, String> mFields = new LinkedHashMap<>();

    private ImageState(VImageIPC image) {
        mFields.put("format", image.mFormat);
        mFields.put("width", Integer.toString(image.mWidth));
        mFields.put("height", Integer.toString(image.mHeight));
        mFields.put("row strides", Arrays.toString(image.mRowStrides));
        mFields.put("plane sizes", Arrays.toString(image.mPlaneSizes));
    }

    public static ImageState of(VImageIPC image) {
        return new ImageState(image);
    }

    /** The fields by their names, as text. */
    public Map<String, String> fields() {
        return mFields;
    }
}
