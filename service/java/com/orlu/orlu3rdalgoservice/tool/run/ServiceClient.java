package com.orlu.orlu3rdalgoservice.tool.run;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.Orlu3rdAlgoService;
import com.orlu.orlu3rdalgoservice.record.RequestRecorder;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;

/** One client of the native library. A stopwatch measures its creation and destruction. */
public final class ServiceClient {
    private final Orlu3rdAlgoService mService = new Orlu3rdAlgoService();
    private final CaptureResultComposition mParam = new CaptureResultComposition();
    private final long mClientId;
    private final long mHandle;
    private final RequestRecorder mRecorder;

    /** Creates and initialises the client that a request names. A null `recorder` records nothing. */
    public ServiceClient(RequestFile request, Stopwatch stopwatch, RequestRecorder recorder) {
        mRecorder = recorder;
        mClientId = request.clientId();
        mParam.putMetadata("clientId", mClientId);
        mParam.putMetadata("algoContextIndex", request.algoContextIndex());
        mHandle = stopwatch.time("create", () -> mService.createNativeClient(mParam));
        int status = stopwatch.time("init", () -> mService.algoInit(mHandle, mParam));
        if (mHandle == 0 || status != 0) {
            throw new IllegalStateException("the native client can't be created or initialised: handle "
                    + mHandle + ", status of init " + status);
        }
        if (recorder != null) {
            recorder.addClient(mHandle, mParam);
        }
    }

    Orlu3rdAlgoService service() {
        return mService;
    }

    /** The recorder; null if nothing is recorded. */
    RequestRecorder recorder() {
        return mRecorder;
    }

    long handle() {
        return mHandle;
    }

    public long clientId() {
        return mClientId;
    }

    /** Releases and destroys the client. Passes the image format of `request`, the client's last request. */
    public void end(RequestFile request, Stopwatch stopwatch) {
        if (mRecorder != null) {
            mRecorder.removeClient(mHandle);
        }
        mParam.putMetadata("imageFormat", request.imageFormat());
        stopwatch.time("release", () -> mService.algoRelease(mHandle, mParam));
        stopwatch.time("destroy", () -> mService.destroyNativeClient(mHandle));
    }
}
