package android.hardware.camera2.impl;

import android.graphics.Rect;
import android.location.Location;
import java.lang.invoke.MethodType;
import java.lang.reflect.Array;
import java.nio.charset.StandardCharsets;

/**
 * Converts a tag's value to the class in which it is stored, or to the class that a reader requests. Converts
 * between primitive and boxed arrays, between strings and their UTF-8 bytes, and between single values and
 * arrays of one element, but never between number types. Returns copies of mutable values.
 */
final class TagConversion {
    private TagConversion() {
    }

    /** Returns the value as {@code type}; null if that is impossible, or if an array contains null. */
    static Object convert(Object value, Class<?> type) {
        if (type.isInstance(value)) {
            return copy(value);
        }
        if (type == byte[].class && value instanceof String text) {
            return text.getBytes(StandardCharsets.UTF_8);
        }
        if (type == String.class && value instanceof byte[] bytes) {
            return new String(bytes, StandardCharsets.UTF_8);
        }
        if (type.isArray()) {
            return toArray(value, type.getComponentType());
        }
        boolean isSingle = value.getClass().isArray() && Array.getLength(value) == 1;
        return isSingle && type.isInstance(Array.get(value, 0)) ? copy(Array.get(value, 0)) : null;
    }

    private static Object copy(Object value) {
        if (value.getClass().isArray()) {
            return toArray(value, value.getClass().getComponentType());
        }
        if (value instanceof Rect rect) {
            return new Rect(rect);
        }
        return value instanceof Location location ? new Location(location) : value;
    }

    private static Object toArray(Object value, Class<?> component) {
        boolean isArray = value.getClass().isArray();
        int length = isArray ? Array.getLength(value) : 1;
        Object array = Array.newInstance(component, length);
        if (component.isPrimitive() && value.getClass() == array.getClass()) {
            System.arraycopy(value, 0, array, 0, length);
            return array;
        }
        Class<?> boxed = MethodType.methodType(component).wrap().returnType();
        for (int i = 0; i < length; i++) {
            Object element = isArray ? Array.get(value, i) : value;
            if (!boxed.isInstance(element)) {
                return null;
            }
            Array.set(array, i, element);
        }
        return array;
    }
}
