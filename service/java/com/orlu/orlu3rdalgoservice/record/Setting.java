package com.orlu.orlu3rdalgoservice.record;

import java.util.Locale;
import java.util.function.UnaryOperator;

/** The recorder's settings: Java's system properties, or the platform's properties on a phone. */
final class Setting {
    private static final String PLATFORM_PREFIX = "persist.vendor.";

    private Setting() {
    }

    /** Returns the property {@code name}, else the platform's "persist.vendor.NAME", else "". */
    static String get(String name) {
        return get(name, Setting::ofPlatform);
    }

    /**
     * Returns the probe's setting "ORLU_NAME": the environment variable, else the platform's property
     * "persist.vendor.orlu.name", else "".
     */
    static String ofProbe(String variable) {
        String value = System.getenv(variable);
        return value == null || value.isEmpty()
                ? ofPlatform(PLATFORM_PREFIX + variable.toLowerCase(Locale.ROOT).replaceFirst("_", ".")) : value;
    }

    static String get(String name, UnaryOperator<String> platform) {
        String value = System.getProperty(name, "");
        return value.isEmpty() ? platform.apply(PLATFORM_PREFIX + name) : value;
    }

    /** Returns the property {@code name}; {@code otherwise} if it is unset or not a positive number. */
    static long number(String name, long otherwise) {
        try {
            long value = Long.parseLong(get(name));
            return value > 0 ? value : otherwise;
        } catch (NumberFormatException e) {
            return otherwise;
        }
    }

    /** Reads a property through a hidden class of the platform; "" if the service may not use that class. */
    private static String ofPlatform(String property) {
        try {
            Class<?> properties = Class.forName("android.os.SystemProperties");
            return (String) properties.getMethod("get", String.class, String.class).invoke(null, property, "");
        } catch (ReflectiveOperationException | LinkageError e) {
            return "";
        }
    }
}
