package com.orlu.orlu3rdalgoservice.datastruct;

/** What the native side asks of a request itself. */
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

    /** Begins with "previewProcess" or "stopProcess" for those; any other text is a shot. */
    public String getRequestType() {
        return mRequestType;
    }
}
