package com.orlu.orlu3rdalgoservice.tool.catalogue;

import java.util.LinkedHashMap;
import java.util.Map;

/** Maps that keep the order of their members. */
final class Ordered {
    private Ordered() {
    }

    static Map<String, String> of(String name, String value, String secondName, String secondValue) {
        Map<String, String> members = new LinkedHashMap<>();
        members.put(name, value);
        members.put(secondName, secondValue);
        return members;
    }
}
