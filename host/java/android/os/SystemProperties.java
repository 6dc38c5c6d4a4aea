package android.os;

import java.util.Objects;

/** The system properties of this process. */
public final class SystemProperties {
    static {
        System.loadLibrary("android_runtime");
    }

    private SystemProperties() {
    }

    /** Sets a property. Values have at most 91 bytes. */
    public static void set(String key, String value) {
        nSet(Objects.requireNonNull(key), value == null ? "" : value);
    }

    private static native void nSet(String key, String value);
}
