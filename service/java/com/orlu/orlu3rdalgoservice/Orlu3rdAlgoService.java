package com.orlu.orlu3rdalgoservice;

/**
 * The service's interface to the native library. All int results except the version are status codes: -1 for
 * handle 0, for a null list, or if memory is exhausted; otherwise 0, even if the algorithm library fails.
 *
 * A client handle is the address of a native object. Handles other than 0 are not checked, so the handle of a
 * destroyed client must not be used again. A callback may call any method at any time; other calls on one
 * client must not overlap.
 */
public final class Orlu3rdAlgoService {
    static {
        System.loadLibrary("orlu.vas.native.interface");
    }

    /** Creates a client from "algoContextIndex" and "clientId". Returns its handle; 0 if out of memory. */
    public native long createNativeClient(Object param);

    /** Destroys a client. */
    public native int destroyNativeClient(long inst);

    /** Prepares a client for requests. The parameter object is not read. */
    public native int algoInit(long inst, Object param);

    /** Releases a client's algorithms in the mode for "imageFormat". The client can be initialised again. */
    public native int algoRelease(long inst, Object param);

    /**
     * Flushes a client's algorithms. Ideally, the call returns only when no request is in flight. Ignores
     * both objects.
     */
    public native int flush(long inst, Object unread, Object param);

    /**
     * Aborts the requests whose tag "orlu.control.frameFlag" equals "AbortVal", but only if "AbortKey"
     * begins with this tag's name.
     */
    public native int abort(long inst, Object unread, Object param);

    /**
     * Returns the algorithm library's answer to "cmd"; "" if the library stores no answer. Returns null if
     * the handle is 0, `param` is null, the library offers no getData, or memory is exhausted.
     */
    public native String getData(long inst, Object param);

    /** Passes a parameter file in shared memory to the algorithm library, with its name in "identifier". */
    public native int translateParamFiles(long inst, Object sharedMemory, Object param);

    /** Notifies the algorithms that the process will end, then aborts the process. Does not return. */
    public native void notify(long inst, Object param);

    /**
     * Runs one request. The arguments are a VRequest, Lists of VImageIPC for inputs and outputs, and a List
     * of CaptureResultComposition, one for each frame. If "isFullAsync" is set in the first composition,
     * the call returns before the algorithms are done.
     */
    public native int processImage(
            long inst, Object request, Object inputs, Object outputs, Object compositions);

    /** Writes the results of the full-async request whose "nativeRequestAddr" is in the first composition. */
    public native int processImageUpdateResult(
            long inst, Object request, Object inputs, Object outputs, Object compositions);

    /** Returns the version of the interface between this class and the native library. */
    public native int getVersion();
}
