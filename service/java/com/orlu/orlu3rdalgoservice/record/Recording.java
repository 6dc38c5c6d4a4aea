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
import java.util.function.Function;
import java.util.function.IntSupplier;

/**
 * The recording of one request, while it is written. The first thing that fails ends it, after a line that
 * says what failed where that can still be written.
 */
public final class Recording {
    private static final int VERSION = 1;

    /** A step of recording, which may fail. */
    interface Step {
        void run() throws IOException, ErrnoException;
    }

    private final RequestRecorder mOwner;
    private final long mInst;
    private final Object mRequest;

    private RecordFile mFile;
    private Function<HardwareBuffer, ByteBuffer> mMapper;
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

    /** The folder that this is written into; null when there is none. */
    public File folder() {
        return mFile == null ? null : mFile.folder();
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

    /** Runs a step, unless an earlier one failed. Nothing that it throws reaches the request. */
    void guard(Step step) {
        if (mIsOver) {
            return;
        }
        try {
            step.run();
        } catch (IOException | ErrnoException | RuntimeException | Error e) {
            // Errors too: a value's own code can want more memory or a deeper stack than there is.
            mIsOver = true;
            boolean hasReason = closeAfter(e);
            RequestRecorder.warn("request " + idOf(mRequest) + " is not recorded any further: " + e
                    + (hasReason || mFile == null ? "" : " (" + mFile.folder() + " does not say why)"));
        }
    }

    // Returns whether the recording has the reason. A full disk takes no last line.
    private boolean closeAfter(Throwable problem) {
        if (mFile == null) {
            return false;
        }
        try (RecordFile file = mFile) {
            file.write(new JsonText("failed").add("what", problem.toString()));
            return true;
        } catch (IOException | RuntimeException | Error e) {
            return false;
        }
    }

    void open(RecordFile file, Function<HardwareBuffer, ByteBuffer> mapper, Orlu3rdAlgoService service,
            CaptureResultComposition client, Map<String, String> properties) throws IOException {
        mFile = file;
        mMapper = mapper;
        file.write(new JsonText("header").add("format", "orlu-recording").add("version", VERSION)
                .add("milliseconds", System.currentTimeMillis()).add("interface", service.getVersion())
                .add("system", System.getProperty("os.name") + " " + System.getProperty("os.version"))
                .add("machine", String.valueOf(System.getProperty("os.arch")))
                .add("java", String.valueOf(System.getProperty("java.version"))));
        file.write(new JsonText("client").addValues("values",
                client == null ? new LinkedHashMap<>() : client.snapshot()));
        file.write(new JsonText("properties").addValues("values", properties));
        mEvents = EventCopy.begin(file);
    }

    void before(Object inputs, Object outputs, Object compositions) throws IOException, ErrnoException {
        VRequest request = (VRequest) mRequest;
        mFile.write(new JsonText("request").add("id", request.getRequestId())
                .add("type", String.valueOf(request.getRequestType())));
        int frame = 0;
        for (Object element : (List<?>) compositions) {
            CaptureResultComposition composition = (CaptureResultComposition) element;
            Map<String, Object> values = composition.snapshot();
            mBefore.add(values);
            mFile.write(new JsonText("frame").add("index", frame++)
                    .addValues("captureResult", tagsOf(composition)).addValues("composition", values));
        }
        mIsFullAsync = !mBefore.isEmpty() && Integer.valueOf(1).equals(mBefore.get(0).get("isFullAsync"));
        writeImages("input", "input", inputs, true);
        writeImages("output", "before", outputs, false);
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

    // A tag of a vendor can be one that the platform's own reader doesn't take.
    private static Object valueOf(CaptureResult result, CaptureResult.Key<?> key) {
        try {
            return result.get(key);
        } catch (RuntimeException e) {
            return e;
        }
    }

    // Pixels that are all 0, as new memory has them, are in no file.
    private void writeImages(String part, String prefix, Object images, boolean always)
            throws IOException, ErrnoException {
        int index = 0;
        for (Object element : (List<?>) images) {
            VImageIPC image = (VImageIPC) element;
            JsonText line = new JsonText(part)
                                    .add("index", index)
                                    .add("format", String.valueOf(image.mFormat))
                                    .add("width", image.mWidth)
                                    .add("height", image.mHeight)
                                    .add("rowStrides", image.mRowStrides)
                                    .add("planeSizes", image.mPlaneSizes);
            ByteBuffer pixels = map(image, line);
            if (pixels != null) {
                try {
                    line.add("size", pixels.remaining());
                    if (always || !isZero(pixels)) {
                        mFile.writeBytes(prefix + index + ".bin", pixels, line);
                    }
                } finally {
                    SharedMemory.unmap(pixels);
                }
            }
            mFile.write(line);
            ++index;
        }
    }

    private ByteBuffer map(VImageIPC image, JsonText line) throws ErrnoException {
        HardwareBuffer buffer = image.mImageDataHwbuff;
        if (buffer != null) {
            line.add("memory", "hardware").add("bufferWidth", buffer.getWidth())
                    .add("bufferHeight", buffer.getHeight()).add("bufferFormat", buffer.getFormat());
            return mMapper.apply(buffer);
        }
        line.add("memory", image.mImageDataShmem == null ? "none" : "shared");
        return image.mImageDataShmem == null ? null : image.mImageDataShmem.mapReadOnly();
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

    /** Runs the request, and writes what came of it; of a full-async one only that it was taken. */
    public int processImage(Orlu3rdAlgoService service, long inst, Object request, Object inputs,
            Object outputs, Object compositions) {
        int status = timed("processed",
                () -> service.processImage(inst, request, inputs, outputs, compositions));
        if (!mIsFullAsync) {
            finish(outputs, compositions);
        }
        return status;
    }

    /** Fetches a full-async request's results, and writes what came of it. */
    public int processImageUpdateResult(Orlu3rdAlgoService service, long inst, Object request, Object inputs,
            Object outputs, Object compositions) {
        // The caller says by a value in the first composition which native request it is.
        guard(() -> {
            Map<String, Object> first =
                    ((CaptureResultComposition) ((List<?>) compositions).get(0)).snapshot();
            mFile.write(new JsonText("updating").addValues("composition", changes(mBefore.get(0), first)));
            mBefore.set(0, first);
        });
        int status = timed("updated",
                () -> service.processImageUpdateResult(inst, request, inputs, outputs, compositions));
        finish(outputs, compositions);
        return status;
    }

    private int timed(String part, IntSupplier call) {
        guard(() -> mFile.write(new JsonText("running").add("nanoTime", System.nanoTime())));
        long start = System.nanoTime();
        int status;
        try {
            status = call.getAsInt();
        } catch (RuntimeException | Error e) {
            guard(() -> mFile.write(new JsonText(part).add("thrown", e.toString())));
            close();
            throw e;
        }
        long nanoseconds = System.nanoTime() - start;
        guard(() -> mFile.write(new JsonText(part).add("status", status).add("ns", nanoseconds)));
        return status;
    }

    private void finish(Object outputs, Object compositions) {
        guard(() -> {
            int frame = 0;
            for (Object composition : (List<?>) compositions) {
                Map<String, Object> put = changes(mBefore.get(frame),
                        ((CaptureResultComposition) composition).snapshot());
                mFile.write(new JsonText("put").add("frame", frame++).addValues("values", put));
            }
            writeImages("result", "output", outputs, true);
        });
        close();
    }

    // A value put again is another object, so that a key put with the value it had shows as well.
    private static Map<String, Object> changes(Map<String, Object> before, Map<String, Object> after) {
        Map<String, Object> changed = new LinkedHashMap<>();
        after.forEach((key, value) -> {
            if (value != before.get(key) || !before.containsKey(key)) {
                changed.put(key, value);
            }
        });
        return changed;
    }

    /** Ends the recording with the events of the request. A full-async one may end without its results. */
    public void close() {
        mOwner.forget(this);
        guard(() -> {
            if (mEvents != null) {
                mEvents.end(mFile, idOf(mRequest));
            }
            mFile.write(new JsonText("end"));
            mFile.close();
            mIsOver = true;
        });
    }
}
