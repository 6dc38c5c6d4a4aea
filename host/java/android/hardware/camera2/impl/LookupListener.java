package android.hardware.camera2.impl;

/** Is notified of every tag read through a capture result. */
public interface LookupListener {
    /**
     * Called after a tag was read as class {@code asked}. {@code held} is the stored value, or null.
     * {@code thrown} is the exception that the reader receives, or null. An exception means that
     * {@code held} can't be converted to that class or, if {@code held} is null, that the tag is unknown.
     */
    void onLookup(String tag, Class<?> asked, Object held, RuntimeException thrown);
}
