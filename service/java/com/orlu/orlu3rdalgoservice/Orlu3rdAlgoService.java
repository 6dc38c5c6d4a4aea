package com.orlu.orlu3rdalgoservice;

/**
 * The service's door to the native library. A client handle is the address of a native object: 0 is the only
 * one that is rejected, and a destroyed one must not be used again. Calls on one client come one at a time.
 */
public final class Orlu3rdAlgoService {
    static {
        System.loadLibrary("orlu.vas.native.interface");
    }

    /** Makes a client from "algoContextIndex" and "clientId". Returns its handle, never 0. */
    public native long createNativeClient(Object param);

    /** Ends a client for good. Returns 0, or -1 for handle 0, as all calls here that return an int. */
    public native int destroyNativeClient(long inst);

    /** Readies a client for requests. The parameter object is not read. */
    public native int algoInit(long inst, Object param);

    /** Lets a client's algorithms go; "imageFormat" decides how far. The client can be initialised again. */
    public native int algoRelease(long inst, Object param);

    /** Drops what a client's algorithms have in hand. Neither object is read. */
    public native int flush(long inst, Object unread, Object param);

    /** Aborts the frame named by "AbortKey" and "AbortVal". */
    public native int abort(long inst, Object unread, Object param);

    /** Asks the algorithms for the text named by "cmd". Null when they don't offer any. */
    public native String getData(long inst, Object param);

    /** Hands over a parameter file in shared memory, under the name "identifier". */
    public native int translateParamFiles(long inst, Object sharedMemory, Object param);

    /** Tells the algorithms that this process is going away, and ends it. Does not return. */
    public native void notify(long inst, Object param);

    /**
     * Runs one request: a VRequest, a List of VImageIPC in, one out, and a List of CaptureResultComposition,
     * one for each frame. With "isFullAsync" set in the first composition it returns before the algorithms
     * are done.
     */
    public native int processImage(
            long inst, Object request, Object inputs, Object outputs, Object compositions);

    /** Writes the results of a full-async request, named by "nativeRequestAddr" in the first composition. */
    public native int processImageUpdateResult(
            long inst, Object request, Object inputs, Object outputs, Object compositions);

    /** The version of the interface between this class and the native library. */
    public native int getVersion();
}
