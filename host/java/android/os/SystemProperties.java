package android.os;

import java.util.Objects;

/** The system properties of this process. */
public final class SystemProperties {
    static {
        System.loadLibrary("android_runtime");
    }

    private SystemProperties() {
    }

    /** The property's value, or {@code fallback} when it is unset or empty; a null one counts as empty. */
    public static String get(String key, String fallback) {
        return nGet(Objects.requireNonNull(key), fallback == null ? "" : fallback);
    }

    /** Sets a property. Values have at most 91 bytes. */
    public static void set(String key, String value) {
        nSet(Objects.requireNonNull(key), value == null ? "" : value);
    }

    private static native String nGet(String key, String fallback);

    private static native void nSet(String key, String value);
}
