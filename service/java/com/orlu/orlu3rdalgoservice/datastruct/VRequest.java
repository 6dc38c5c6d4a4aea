package com.orlu.orlu3rdalgoservice.datastruct;

/** A request's id and type, which the native side reads through the getters. */
public class VRequest {
    private final long mRequestId;
    private final String mRequestType;

    public VRequest(long requestId, String requestType) {
        mRequestId = requestId;
        mRequestType = requestType;
    }

    public long getRequestId() {
        return mRequestId;
    }

    /**
     * Returns the type. The request is a preview if the type begins with "previewProcess", a stop if the type
     * begins with "stopProcess", else a shot.
     */
    public String getRequestType() {
        return mRequestType;
    }
}
