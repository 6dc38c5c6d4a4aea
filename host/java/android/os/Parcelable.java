package android.os;

/** Objects that can be written to a parcel. */
public interface Parcelable {
    void writeToParcel(Parcel destination, int flags);
}
