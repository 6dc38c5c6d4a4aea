package com.orlu.orlu3rdalgoservice.tool.report;

/** One value that was handed to the algorithm library, in its bytes. */
record Parameter(String section, String key, byte[] bytes) {
    boolean hasKeyOf(Parameter other) {
        return key.equals(other.key) && section.equals(other.section);
    }
}
