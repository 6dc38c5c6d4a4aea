package android.hardware.camera2.impl;

/** Is notified of every tag read through a capture result. */
public interface LookupListener {
    /**
     * Called after a tag was read as class {@code asked}. {@code held} is the stored value; null if there is
     * none. {@code thrown} is the exception that the reader receives, else null. If the tag is present, the
     * exception means that its value can't be converted to that class.
     */
    void onLookup(String tag, Class<?> asked, Object held, RuntimeException thrown);
}
