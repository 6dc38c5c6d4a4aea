package android.hardware.camera2.impl;

import java.lang.reflect.Array;
import java.nio.charset.StandardCharsets;

/**
 * Values between the classes in which they are stored, set and asked for. Number types are never changed into one
 * another; arrays change between primitive and boxed, a string is its bytes, and one value is an array of one.
 */
final class TagConversion {
    private TagConversion() {
    }

    /** The value as {@code type}; null when it can't be one. */
    static Object convert(Object value, Class<?> type) {
        if (type.isInstance(value)) {
            return value;
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
        return isSingle && type.isInstance(Array.get(value, 0)) ? Array.get(value, 0) : null;
    }

    private static Object toArray(Object value, Class<?> component) {
        boolean isArray = value.getClass().isArray();
        int length = isArray ? Array.getLength(value) : 1;
        Object array = Array.newInstance(component, length);
        Class<?> boxed = Array.get(Array.newInstance(component, 1), 0) == null
                ? component : Array.get(Array.newInstance(component, 1), 0).getClass();
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
