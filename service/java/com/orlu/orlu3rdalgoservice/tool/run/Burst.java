package com.orlu.orlu3rdalgoservice.tool.run;

import android.os.SystemProperties;
import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.datastruct.VRequest;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSize;
import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.locks.ReentrantLock;
import java.util.function.IntSupplier;
import java.util.stream.IntStream;

/**
 * Sends one request many times on one client. As in the service, calls on the client don't overlap, so
 * synchronous requests run one at a time. All requests share the inputs. Each request has its own outputs,
 * compositions and id. One tag has a different value in each request, to detect mixed-up results.
 */
public final class Burst implements AutoCloseable {
    /** The tag that is set to the unique value, and the tag of the results that should return this value. */
    private static final String PLANTED = "orlu.control.frameFlag";
    private static final String RETURNED = "orlu.feedback.basicFrameTimestamp";
    /** Negative, to distinguish it from a timestamp, which a library may return instead. */
    private static final long FIRST_PLANTED = -1_000_000;

    private final RequestFile mRequest;
    private final ServiceClient mClient;
    private final FrameSize mSize;
    private final List<ImageBuffer> mInputs = new ArrayList<>();
    /** Fair, so that no call waits behind later ones. */
    private final ReentrantLock mClientLock = new ReentrantLock(true);
    private final CallbackInbox mInbox;
    private int mInFlight;
    private int mMostInFlight;
    private long mStart;

    /**
     * One request of the burst.
     *
     * @param tid      the kernel's id of the sending thread
     * @param stages   the stages of this request, in order
     * @param owner    the index of the request whose unique value this request returned; -1 for none
     * @param problems descriptions of failed calls and of a missing callback
     */
    public record Shot(long id, int tid, List<Stopwatch.Stage> stages, int owner, List<String> problems) {
        /** The time from the start of the first stage to the end of the last. */
        public Stopwatch.Stage whole() {
            return new Stopwatch.Stage("whole", stages.get(0).start(), stages.get(stages.size() - 1).end());
        }
    }

    /** Sets the request's properties. Creates each input from these frames, or from the input's file. */
    public Burst(RequestFile request, ServiceClient client, List<SynthesisedFrame> frames)
            throws ErrnoException, MistakeException {
        mRequest = request;
        mClient = client;
        mInbox = new CallbackInbox(client.clientId());
        mSize = FrameSize.of(request, frames);
        request.properties().forEach(SystemProperties::set);
        for (ImagePlan plan : request.inputs()) {
            mInputs.add(RequestImages.input(plan, frames, mSize));
        }
    }

    /**
     * Sends `count` requests, one every `interval` milliseconds. While `inFlight` requests are in flight, the
     * next one waits.
     */
    public List<Shot> run(int count, int interval, int inFlight) throws MistakeException, IOException {
        List<Callable<Shot>> work = new ArrayList<>();
        IntStream.range(0, count).forEach(index -> work.add(() -> shoot(index, interval)));
        List<Shot> shots = new ArrayList<>();
        mStart = System.nanoTime();
        SideBySide.run("sending requests", inFlight, work, shots::add);
        return shots;
    }

    public int mostInFlight() {
        return mMostInFlight;
    }

    /** The number of callbacks that reported the request with this id as done. */
    public int announcements(long id) {
        return mInbox.done(other -> other == id).size();
    }

    private Shot shoot(int index, int interval)
            throws ErrnoException, MistakeException, InterruptedException {
        TimeUnit.NANOSECONDS.sleep(
                mStart + TimeUnit.MILLISECONDS.toNanos((long) index * interval) - System.nanoTime());
        List<RecordedComposition> compositions = RequestImages.compositions(mRequest);
        compositions.forEach(composition -> composition.putMetadata(PLANTED, FIRST_PLANTED - index));
        List<ImageBuffer> outputs = new ArrayList<>();
        try {
            RequestImages.addOutputs(mRequest, mSize, outputs);
            return shoot(mRequest.id() + index, compositions, outputs);
        } finally {
            outputs.forEach(ImageBuffer::close);
        }
    }

    private Shot shoot(long id, List<RecordedComposition> compositions, List<ImageBuffer> outputs) {
        Stopwatch stopwatch = new Stopwatch();
        List<String> problems = new ArrayList<>();
        try (RequestCall call = new RequestCall(mClient, mRequest, new VRequest(id, mRequest.type()),
                     RequestImages.descriptors(mInputs), RequestImages.descriptors(outputs), compositions)) {
            check("processImage", locked(() -> {
                addInFlight(1);
                int status = stopwatch.time("process", call::process);
                addInFlight(mRequest.fullAsync() ? 0 : -1);
                return status;
            }), problems);
            if (mRequest.fullAsync()) {
                Long address = stopwatch.time("wait",
                        () -> mInbox.awaitDone(other -> other == id, RequestRunner.CALLBACK_SECONDS));
                if (address == null) {
                    problems.add("no callback within " + RequestRunner.CALLBACK_SECONDS + " s");
                } else {
                    check("processImageUpdateResult", locked(() -> stopwatch.time("update result",
                            () -> call.update(address))), problems);
                }
                addInFlight(-1);
            }
        }
        int owner = compositions.stream().map(each -> each.getMetadata(RETURNED))
                .filter(Long.class::isInstance)
                .mapToInt(value -> (int) Math.max(-1, FIRST_PLANTED - (Long) value)).findFirst().orElse(-1);
        return new Shot(id, EventLog.thisThread(), stopwatch.stages(), owner, problems);
    }

    private int locked(IntSupplier call) {
        mClientLock.lock();
        try {
            return call.getAsInt();
        } finally {
            mClientLock.unlock();
        }
    }

    private static void check(String call, int status, List<String> problems) {
        if (status != 0) {
            problems.add(call + " returned " + status);
        }
    }

    private synchronized void addInFlight(int change) {
        mInFlight += change;
        mMostInFlight = Math.max(mMostInFlight, mInFlight);
    }

    @Override
    public void close() {
        mInbox.close();
        mInputs.forEach(ImageBuffer::close);
    }
}
