package android.os;

import java.util.Objects;

/** The system properties of this process. */
public final class SystemProperties {
    static {
        System.loadLibrary("android_runtime");
    }

    private SystemProperties() {
    }

    /** Sets a property. Throws an IllegalArgumentException if the value has more than 91 bytes. */
    public static void set(String key, String value) {
        nSet(Objects.requireNonNull(key), value == null ? "" : value);
    }

    /** Returns a property's value. If it is unset or empty, returns {@code def}, or "" for a null default. */
    public static String get(String key, String def) {
        String value = nGet(Objects.requireNonNull(key));
        return value.isEmpty() && def != null ? def : value;
    }

    private static native String nGet(String key);

    private static native void nSet(String key, String value);
}
