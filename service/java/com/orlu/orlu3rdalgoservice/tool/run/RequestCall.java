package com.orlu.orlu3rdalgoservice.tool.run;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.Orlu3rdAlgoService;
import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.datastruct.VRequest;
import com.orlu.orlu3rdalgoservice.record.Recording;
import com.orlu.orlu3rdalgoservice.record.RequestRecorder;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;

import java.util.List;

/** Makes the calls of one request into the native library. Records them if the client has a recorder. */
public final class RequestCall implements AutoCloseable {
    private final Orlu3rdAlgoService mService;
    private final long mHandle;
    private final VRequest mRequest;
    private final List<VImageIPC> mInputs;
    private final List<VImageIPC> mOutputs;
    private final List<? extends CaptureResultComposition> mCompositions;
    /** Null if nothing is recorded. */
    private final Recording mRecording;

    /** If the client has a recorder, records the request and its inputs. `file` is the request's file. */
    public RequestCall(ServiceClient client, RequestFile file, VRequest request, List<VImageIPC> inputs,
            List<VImageIPC> outputs, List<? extends CaptureResultComposition> compositions) {
        mService = client.service();
        mHandle = client.handle();
        mRequest = request;
        mInputs = inputs;
        mOutputs = outputs;
        mCompositions = compositions;
        RequestRecorder recorder = client.recorder();
        if (recorder == null) {
            mRecording = null;
            return;
        }
        recorder.setProperties(file::properties);
        recorder.setAbout(file.about());
        mRecording = recorder.begin(mService, mHandle, request, inputs, outputs, compositions);
    }

    public int process() {
        return mRecording == null
                ? mService.processImage(mHandle, mRequest, mInputs, mOutputs, mCompositions)
                : mRecording.processImage(mService, mHandle, mRequest, mInputs, mOutputs, mCompositions);
    }

    /** Fetches the results of the native request with this id. */
    public int update(Long nativeReq) {
        mCompositions.get(0).putMetadata("nativeRequestAddr", nativeReq);
        return mRecording == null
                ? mService.processImageUpdateResult(mHandle, mRequest, mInputs, mOutputs, mCompositions)
                : mRecording.processImageUpdateResult(
                        mService, mHandle, mRequest, mInputs, mOutputs, mCompositions);
    }

    /** Finishes the recording, even if a full-async request had no callback. */
    @Override
    public void close() {
        if (mRecording != null) {
            mRecording.close();
        }
    }
}
