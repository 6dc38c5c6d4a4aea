package android.hardware.camera2.impl;

/** Hears of every tag that is asked for through a capture result. */
public interface LookupListener {
    /**
     * A tag was asked for as a class. {@code held} is the value as the store holds it, null when there is
     * none. {@code thrown} is what the caller got instead of an answer, else null: of a tag that is held,
     * because it can't be of that class.
     */
    void onLookup(String tag, Class<?> asked, Object held, RuntimeException thrown);
}
