package com.orlu.orlu3rdalgoservice.datastruct;

/** The service's class of this name, but one that throws for no type. Stands before it in the class path. */
public final class VRequest {
    private final long mRequestId;
    private final String mRequestType;

    public VRequest(long requestId, String requestType) {
        mRequestId = requestId;
        mRequestType = requestType;
    }

    public long getRequestId() {
        if (mRequestId == Long.MIN_VALUE) {
            throw new IllegalStateException("id");
        }
        return mRequestId;
    }

    public String getRequestType() {
        if (mRequestType == null && mRequestId % 2 == 0) {
            throw new IllegalStateException("type");
        }
        return mRequestType;
    }
}
