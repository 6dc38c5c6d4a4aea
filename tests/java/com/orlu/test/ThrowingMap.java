package com.orlu.test;

import java.util.HashMap;

/** A map whose put() throws. */
public final class ThrowingMap extends HashMap<Object, Object> {
    private static final long serialVersionUID = 1;

    @Override
    public Object put(Object key, Object value) {
        throw new UnsupportedOperationException("thrown for " + key);
    }
}
