package android.location;

/** Place and time of a picture: degrees, metres, milliseconds since 1970. */
public final class Location {
    private final String mProvider;
    private double mLatitude;
    private double mLongitude;
    private double mAltitude;
    private boolean mHasAltitude;
    private long mTime;

    public Location(String provider) {
        mProvider = provider;
    }

    public Location(Location other) {
        mProvider = other.mProvider;
        mLatitude = other.mLatitude;
        mLongitude = other.mLongitude;
        mAltitude = other.mAltitude;
        mHasAltitude = other.mHasAltitude;
        mTime = other.mTime;
    }

    public String getProvider() {
        return mProvider;
    }

    public double getLatitude() {
        return mLatitude;
    }

    public void setLatitude(double latitude) {
        mLatitude = latitude;
    }

    public double getLongitude() {
        return mLongitude;
    }

    public void setLongitude(double longitude) {
        mLongitude = longitude;
    }

    /** Returns 0 if {@link #hasAltitude()} is false. */
    public double getAltitude() {
        return mAltitude;
    }

    public void setAltitude(double altitude) {
        mAltitude = altitude;
        mHasAltitude = true;
    }

    public boolean hasAltitude() {
        return mHasAltitude;
    }

    public long getTime() {
        return mTime;
    }

    public void setTime(long time) {
        mTime = time;
    }
}
