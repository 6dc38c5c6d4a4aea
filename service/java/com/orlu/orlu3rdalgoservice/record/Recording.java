package com.orlu.orlu3rdalgoservice.record;

import android.hardware.HardwareBuffer;
import android.hardware.camera2.CaptureResult;
import android.os.SharedMemory;
import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.Orlu3rdAlgoService;
import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.datastruct.VRequest;

import java.io.File;
import java.io.IOException;
import java.nio.ByteBuffer;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.IntSupplier;

/**
 * Writes the recording of one request: inputs before the request runs, results afterwards. The first failure
 * stops the recording, and its reason is written to outcome.json if possible.
 */
public final class Recording {
    private static final int VERSION = 2;

    interface Step {
        void run() throws IOException, ErrnoException;
    }

    private final RequestRecorder mOwner;
    private final long mInst;
    private final Object mRequest;

    private RecordFolder mFolder;
    private final Map<String, Object> mOutcome = new LinkedHashMap<>();
    private boolean mIsFullAsync;
    private boolean mIsOver;
    private List<Map<String, Object>> mBefore = new ArrayList<>();
    /** Null without a probe. */
    private EventCopy mEvents;

    Recording(RequestRecorder owner, long inst, Object request) {
        mOwner = owner;
        mInst = inst;
        mRequest = request;
    }

    /** The folder of the recording; null if there is none. */
    public File folder() {
        return mFolder == null ? null : mFolder.folder();
    }

    boolean isFullAsync() {
        return mIsFullAsync && !mIsOver;
    }

    boolean isOf(long inst, Object request) {
        return inst == mInst && idOf(request).equals(idOf(mRequest));
    }

    static String idOf(Object request) {
        return request instanceof VRequest ? Long.toString(((VRequest) request).getRequestId()) : "unknown";
    }

    /** Runs a step unless the recording has finished or failed. No exception reaches the request. */
    void guard(Step step) {
        if (mIsOver) {
            return;
        }
        try {
            step.run();
        } catch (IOException | ErrnoException | RuntimeException | Error e) {
            // Also catches Error: methods of a recorded value may exhaust memory or stack.
            mIsOver = true;
            boolean isWritten = writeReason(e);
            RequestRecorder.warn("recording of request " + idOf(mRequest) + " stopped: " + e
                    + (isWritten || mFolder == null ? ""
                            : "; can't write the reason to " + mFolder.folder()));
        }
    }

    // Writes the reason into the recording. Returns false if that fails, such as on a full disk.
    private boolean writeReason(Throwable problem) {
        if (mFolder == null) {
            return false;
        }
        try {
            mFolder.fail(problem.toString());
            return true;
        } catch (IOException | RuntimeException | Error e) {
            return false;
        }
    }

    void open(RecordFolder folder) {
        mFolder = folder;
        mEvents = EventCopy.begin();
    }

    void before(Orlu3rdAlgoService service, String about, CaptureResultComposition client,
            Map<String, String> properties, Object inputs, Object outputs, Object compositions)
            throws IOException, ErrnoException {
        VRequest request = (VRequest) mRequest;
        Map<String, Object> json = new LinkedHashMap<>();
        if (!about.isEmpty()) {
            json.put("about", about);
        }
        Map<String, Object> header = JsonWriter.object("format", "orlu-recording", "version", VERSION,
                "milliseconds", System.currentTimeMillis(), "interface", service.getVersion(),
                "system", System.getProperty("os.name") + " " + System.getProperty("os.version"),
                "machine", String.valueOf(System.getProperty("os.arch")),
                "java", String.valueOf(System.getProperty("java.version")));
        if (mEvents != null) {
            header.put("eventsFrom", mEvents.start());
        }
        json.put("recording", header);
        json.put("request", JsonWriter.object("id", request.getRequestId(),
                "type", String.valueOf(request.getRequestType())));
        json.put("client", client == null ? JsonWriter.object() : clientOf(client.snapshot()));
        json.put("properties", properties);
        List<Object> frames = new ArrayList<>();
        for (Object element : (List<?>) compositions) {
            CaptureResultComposition composition = (CaptureResultComposition) element;
            Map<String, Object> values = composition.snapshot();
            mBefore.add(values);
            frames.add(JsonWriter.object("captureResult", HeldValue.typed(tagsOf(composition)),
                    "composition", HeldValue.typed(values)));
        }
        json.put("frames", frames);
        mIsFullAsync = !mBefore.isEmpty() && Integer.valueOf(1).equals(mBefore.get(0).get("isFullAsync"));
        json.put("inputs", images("inputs", "input", inputs, true));
        json.put("outputs", images("outputs", "before", outputs, false));
        mFolder.write(RecordFolder.REQUEST, json);
    }

    // Returns the values from which the library creates a client.
    private static Map<String, Object> clientOf(Map<String, Object> values) {
        Map<String, Object> client = new LinkedHashMap<>();
        for (String name : new String[] {"clientId", "algoContextIndex"}) {
            if (values.get(name) instanceof Number number) {
                client.put(name, number.longValue());
            }
        }
        return client;
    }

    private static Map<String, Object> tagsOf(CaptureResultComposition composition) {
        CaptureResult result = composition.assembleResultComposition();
        Map<String, Object> values = new LinkedHashMap<>();
        if (result != null) {
            for (CaptureResult.Key<?> key : result.getKeys()) {
                values.put(key.getName(), valueOf(result, key));
            }
        }
        return values;
    }

    // The platform's reader may reject a vendor's tag. Then the exception is recorded as the value.
    private static Object valueOf(CaptureResult result, CaptureResult.Key<?> key) {
        try {
            return result.get(key);
        } catch (RuntimeException e) {
            return e;
        }
    }

    // Describes the images and writes their pixels to files. If `always` is false, pixels that are all 0,
    // like fresh memory, get no file.
    private List<Object> images(String name, String prefix, Object images, boolean always)
            throws IOException, ErrnoException {
        List<?> all = (List<?>) images;
        List<Object> described = new ArrayList<>();
        for (int i = 0; i < all.size(); ++i) {
            VImageIPC image = (VImageIPC) all.get(i);
            Map<String, Object> json = JsonWriter.object("format", String.valueOf(image.mFormat),
                    "width", image.mWidth, "height", image.mHeight, "rowStrides", image.mRowStrides,
                    "planeSizes", image.mPlaneSizes);
            if (name.equals("inputs") && !mBefore.isEmpty() && all.size() % mBefore.size() == 0) {
                json.put("frame", i / (all.size() / mBefore.size()));
            }
            try (MappedPixels pixels = map(image, json)) {
                if (pixels != null) {
                    json.put("size", pixels.bytes().remaining());
                    if (always || !isZero(pixels.bytes())) {
                        mFolder.writePixels(prefix + i + ".bin", pixels.bytes(), json);
                    }
                }
            }
            described.add(json);
        }
        return described;
    }

    /** Returns null for an image without memory and for a hardware buffer that can't be mapped. */
    private static MappedPixels map(VImageIPC image, Map<String, Object> json) throws ErrnoException {
        HardwareBuffer buffer = image.mImageDataHwbuff;
        if (buffer == null) {
            json.put("memory", image.mImageDataShmem == null ? "none" : "shared");
            return image.mImageDataShmem == null ? null : map(image.mImageDataShmem);
        }
        json.put("memory", "hardware");
        json.put("buffer", new int[] {buffer.getWidth(), buffer.getHeight(), buffer.getFormat()});
        try {
            return HardwarePixels.lock(buffer);
        } catch (IllegalStateException e) {
            json.put("kept", "no: " + e.getMessage());
            return null;
        }
    }

    private static MappedPixels map(SharedMemory memory) throws ErrnoException {
        ByteBuffer bytes = memory.mapReadOnly();
        return new MappedPixels(bytes, () -> SharedMemory.unmap(bytes));
    }

    private static boolean isZero(ByteBuffer bytes) {
        int end = bytes.limit();
        int i = bytes.position();
        for (; i + Long.BYTES <= end; i += Long.BYTES) {
            if (bytes.getLong(i) != 0) {
                return false;
            }
        }
        for (; i < end; ++i) {
            if (bytes.get(i) != 0) {
                return false;
            }
        }
        return true;
    }

    /** Runs the request and records its result; for a full-async request, only this call's status and time. */
    public int processImage(Orlu3rdAlgoService service, long inst, Object request, Object inputs,
            Object outputs, Object compositions) {
        int status = timed("processed", null,
                () -> service.processImage(inst, request, inputs, outputs, compositions));
        if (!mIsFullAsync) {
            finish(outputs, compositions);
        }
        return status;
    }

    /** Fetches a full-async request's results and records them. */
    public int processImageUpdateResult(Orlu3rdAlgoService service, long inst, Object request, Object inputs,
            Object outputs, Object compositions) {
        // The service has put the native request's id into the first composition.
        Map<String, Object> given = new LinkedHashMap<>();
        guard(() -> {
            Map<String, Object> first =
                    ((CaptureResultComposition) ((List<?>) compositions).get(0)).snapshot();
            given.putAll(changes(mBefore.get(0), first));
            mBefore.set(0, first);
        });
        int status = timed("updated", given,
                () -> service.processImageUpdateResult(inst, request, inputs, outputs, compositions));
        finish(outputs, compositions);
        return status;
    }

    private int timed(String name, Map<String, Object> given, IntSupplier call) {
        long start = System.nanoTime();
        int status;
        try {
            status = call.getAsInt();
        } catch (RuntimeException | Error e) {
            guard(() -> addCall(name, given, start).put("thrown", String.valueOf(e.toString())));
            close();
            throw e;
        }
        long nanoseconds = System.nanoTime() - start;
        guard(() -> {
            Map<String, Object> made = addCall(name, given, start);
            made.put("status", status);
            made.put("ns", nanoseconds);
        });
        return status;
    }

    private Map<String, Object> addCall(String name, Map<String, Object> given, long start) {
        Map<String, Object> made = JsonWriter.object("start", start);
        if (given != null) {
            made.put("composition", HeldValue.typed(given));
        }
        mOutcome.put(name, made);
        return made;
    }

    private void finish(Object outputs, Object compositions) {
        guard(() -> {
            List<Object> frames = new ArrayList<>();
            int frame = 0;
            for (Object composition : (List<?>) compositions) {
                Map<String, Object> put = changes(mBefore.get(frame++),
                        ((CaptureResultComposition) composition).snapshot());
                frames.add(HeldValue.typed(put));
            }
            mOutcome.put("put", frames);
            mOutcome.put("outputs", images("outputs", "output", outputs, true));
        });
        close();
    }

    // Compares by identity, so that putting an equal value again counts as a change.
    private static Map<String, Object> changes(Map<String, Object> before, Map<String, Object> after) {
        Map<String, Object> changed = new LinkedHashMap<>();
        after.forEach((key, value) -> {
            if (value != before.get(key) || !before.containsKey(key)) {
                changed.put(key, value);
            }
        });
        return changed;
    }

    /** Adds the request's events and finishes the recording. A full-async request may have no results yet. */
    public void close() {
        mOwner.forget(this);
        guard(() -> {
            if (mEvents != null) {
                mEvents.end(mFolder, idOf(mRequest), mOutcome);
            }
            mFolder.write(RecordFolder.OUTCOME, mOutcome);
            mIsOver = true;
        });
    }
}
