package com.orlu.orlu3rdalgoservice.record;

import java.util.Locale;
import java.util.function.UnaryOperator;

/** What the recorder is told: by Java's system properties, else on a phone by the platform's. */
final class Setting {
    private static final String PLATFORM_PREFIX = "persist.vendor.";

    private Setting() {
    }

    /** The property {@code name}, else the platform's "persist.vendor.NAME"; "" when neither is set. */
    static String get(String name) {
        return get(name, Setting::ofPlatform);
    }

    /** What the probe reads for one of its variables, "ORLU_...". */
    static String ofProbe(String variable) {
        String value = System.getenv(variable);
        return value == null || value.isEmpty()
                ? ofPlatform(PLATFORM_PREFIX + variable.toLowerCase(Locale.ROOT).replaceFirst("_", ".")) : value;
    }

    static String get(String name, UnaryOperator<String> platform) {
        String value = System.getProperty(name, "");
        return value.isEmpty() ? platform.apply(PLATFORM_PREFIX + name) : value;
    }

    /** A positive number; {@code otherwise} when the property is not set or is none. */
    static long number(String name, long otherwise) {
        try {
            long value = Long.parseLong(get(name));
            return value > 0 ? value : otherwise;
        } catch (NumberFormatException e) {
            return otherwise;
        }
    }

    /** Asks the platform's hidden class, which a service need not be allowed to reach. */
    private static String ofPlatform(String property) {
        try {
            Class<?> properties = Class.forName("android.os.SystemProperties");
            return (String) properties.getMethod("get", String.class, String.class).invoke(null, property, "");
        } catch (ReflectiveOperationException | LinkageError e) {
            return "";
        }
    }
}
