package com.orlu.orlu3rdalgoservice;

/**
 * The service's interface to the native library. Each method that takes a client handle and returns an int
 * returns 0 on success, and -1 for handle 0, for a null list, or if memory is exhausted.
 *
 * A client handle is the address of a native object. Handles other than 0 are not checked, so the handle of a
 * destroyed client must not be used again. Calls on one client must not overlap, except that a callback may
 * call any method.
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

    /** Flushes a client's algorithms; ideally returns after the requests in flight. Ignores both objects. */
    public native int flush(long inst, Object unread, Object param);

    /** Aborts the requests whose frame flag is "AbortVal". If "AbortKey" is another tag, only returns 0. */
    public native int abort(long inst, Object unread, Object param);

    /** Returns the algorithm library's answer to "cmd": "" if it has none, null if it can't be asked. */
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
