package com.orlu.fuzz;

import android.hardware.camera2.impl.CameraMetadataNative;
import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;
import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.datastruct.VRequest;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.List;
import java.util.Random;
import java.util.function.IntFunction;
import java.util.stream.Collectors;
import java.util.stream.IntStream;

/** The arguments of every native method, made from one seed. */
public final class HostileRequest implements AutoCloseable {
    private static final List<String> ALGORITHMS = List.of("night", "hdr", "superns", "supernsll", "llhdr",
            "flip", "upscale", "jpegEncode", "frameClarOnly", "lightstream", "ppt", "gra", "beauty",
            "jpegBokehOnly", "engineDualbokeh", "dualBokeh", "dualbokehMultiFrame", "refocusJpegPack",
            "pixelshift", "rawhdr", "superstar", "zoom", "rawenhance", "dualexpo", "bestMoment",
            "singleBokeh", "eis", "nightPortrait", "engineDistortion");
    private static final List<String> PARAMETERS = List.of("algoContextIndex", "clientId", "imageFormat",
            "AbortKey", "AbortVal", "cmd", "identifier", "nativeRequestAddr");
    private static final List<String> TYPES = List.of("capture", "previewProcess", "previewProcessMore",
            "stopProcess", "stop", "");
    private static final List<Integer> FRAMES = List.of(0, 1, 1, 1, 2, 2, 3, 3, 5, 7, 9, 10, 17, 51, 300);

    // The native arguments, declared as Object because their class may be wrong.
    public final Object request;
    public final Object inputs;
    public final Object outputs;
    public final Object compositions;
    public final Object parameter;
    public final Object sharedMemory;

    private static final int PDAF_BYTES = 2080;
    private static final int PDAF_COUNT = 16;
    private static final int PDAF_TYPE = 2076;

    private final HostileValues mValues;
    private final HostileImages mImages;
    private final int mDensity; // percentage of tags that are set in the first 20 frames
    private final int mRightness; // percentage of the compositions' own values that fit the tag's type
    private final int mBracketing; // index of the night frame; 9: frames 0 to 2 are night, -1: random

    /**
     * {@code mode} 0 makes a synchronous request, mode 1 a full-async request. Modes 2 and 3 equal modes 0
     * and 1, but with an image score that makes the library skip the algorithms. {@code address} is the first
     * composition's "nativeRequestAddr".
     */
    public HostileRequest(long seed, int mode, long address) {
        mValues = new HostileValues(new Random(seed));
        mImages = new HostileImages(mValues);
        mDensity = mValues.pick(List.of(0, 5, 30, 95));
        mRightness = mValues.pick(List.of(50, 90, 100));
        mBracketing = mValues.chance(50) ? mValues.pick(List.of(0, 4, 6, 9)) : -1;
        int frames = mValues.pick(FRAMES);
        List<Object> frameList = elements(frames, i -> frame(mode, i, address));
        String type = mValues.chance(90) ? mValues.pick(TYPES) : mValues.chance(30) ? null : mValues.text();
        request = swapped(request(mValues.aLong(), type));
        int images = mValues.chance(70) ? frames : mValues.below(9);
        inputs = swapped(list(elements(images, i -> mImages.element())));
        outputs = swapped(list(elements(mValues.below(4), i -> mImages.element())));
        compositions = swapped(list(frameList));
        parameter = swapped(parameter());
        sharedMemory = mValues.chance(50) ? mImages.memory() : mValues.anything();
    }

    private static VRequest request(long id, String requestType) {
        return new VRequest(id, requestType) {
            @Override
            public long getRequestId() {
                if (id == Long.MIN_VALUE) {
                    throw new IllegalStateException("id");
                }
                return id;
            }

            @Override
            public String getRequestType() {
                if (requestType == null && id % 2 == 0) {
                    throw new IllegalStateException("type");
                }
                return requestType;
            }
        };
    }

    private static List<Object> elements(int count, IntFunction<Object> maker) {
        return IntStream.range(0, count).mapToObj(maker).collect(Collectors.toList());
    }

    private Object swapped(Object argument) {
        return mValues.chance(3) ? mValues.anything() : argument;
    }

    private Object list(List<Object> elements) {
        return mValues.chance(80) ? elements : new HostileList(elements, mValues);
    }

    private Object frame(int mode, int index, long address) {
        if (mValues.chance(2)) {
            return mValues.anything();
        }
        HostileComposition composition = composition(index < 20 ? mDensity : 2);
        putPlausible(composition, index);
        if (index == 0) {
            composition.putMetadata("orlu.control.algoType", algorithms());
            composition.putMetadata("isFullAsync", mode % 2 == 1 ? 1
                    : mValues.chance(50) ? 0 : mValues.text());
            composition.putMetadata("nativeRequestAddr", address);
            if (mode >= 2) {
                composition.putMetadata("orlu.control.image.score", new double[] {1_000_000.0});
            }
        }
        if (mValues.chance(3)) {
            composition.throwSometimes();
        }
        return composition;
    }

    /** Adds combinations that random values rarely hit: HDR and night brackets, and phase-detection data. */
    private void putPlausible(CaptureResultComposition composition, int index) {
        if (mBracketing >= 0) {
            boolean isNight = mBracketing == 9 ? index < 3 : index == mBracketing;
            composition.putMetadata("orlu.control.currentModeEx", isNight ? 8L
                    : mValues.chance(99) ? 2L : 0L);
        }
        if (index == 0 && mValues.chance(20)) {
            ByteBuffer pdaf = ByteBuffer.allocate(PDAF_BYTES).order(ByteOrder.LITTLE_ENDIAN);
            pdaf.putInt(PDAF_COUNT, mValues.anInt()).putInt(PDAF_TYPE, mValues.below(6));
            composition.putMetadata("orlu.feedback.sensor_pdaf_info", pdaf.array());
        }
    }

    private HostileComposition composition(int density) {
        CameraMetadataNative metadata = new CameraMetadataNative();
        HostileComposition composition = new HostileComposition(metadata, mValues);
        for (String tag : TagTable.names()) {
            if (!mValues.chance(density)) {
                continue;
            }
            TagType type = TagTable.typeOf(tag);
            if (mValues.chance(50)) {
                metadata.set(tag, mValues.valueOf(type));
            } else {
                composition.putMetadata(tag, !mValues.chance(mRightness) ? mValues.anything()
                        : mValues.chance(50) ? mValues.boxed(type) : mValues.valueOf(type));
            }
        }
        return composition;
    }

    private Object algorithms() {
        if (mValues.chance(3)) {
            return mValues.anything();
        }
        int count = mValues.chance(95) ? mValues.below(6) : mValues.below(2000);
        return elements(count, i -> mValues.chance(90) ? mValues.pick(ALGORITHMS)
                : mValues.chance(20) ? null : mValues.text()).toArray(new String[0]);
    }

    private CaptureResultComposition parameter() {
        CaptureResultComposition made = new CaptureResultComposition();
        for (String key : PARAMETERS) {
            if (mValues.chance(70)) {
                made.putMetadata(key, mValues.chance(50) ? mValues.anything()
                        : mValues.chance(50) ? mValues.text() : (Object) mValues.aLong());
            }
        }
        return made;
    }

    @Override
    public void close() {
        mImages.close();
    }
}
