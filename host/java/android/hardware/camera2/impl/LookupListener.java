package android.hardware.camera2.impl;

/** Is notified of every tag read through a capture result. */
public interface LookupListener {
    /**
     * A tag was read as class {@code asked}. {@code held} is the stored value, null if there is none. {@code
     * thrown} is the exception that the caller got, else null; for a present tag it means that the value
     * can't be of that class.
     */
    void onLookup(String tag, Class<?> asked, Object held, RuntimeException thrown);
}
