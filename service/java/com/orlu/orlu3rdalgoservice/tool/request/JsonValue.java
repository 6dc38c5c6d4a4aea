package com.orlu.orlu3rdalgoservice.tool.request;

import java.util.Map;

/**
 * A value of a JSON file with its place, which no tree of a library keeps.
 *
 * @param content a Map of Members, a List of JsonValues, a String, BigDecimal or Boolean, or null
 * @param line    from 1; 0 for one that comes from no file
 * @param column  from 1
 */
record JsonValue(Object content, int line, int column) {
    /**
     * A member of an object.
     *
     * @param line   of its name
     * @param column likewise
     * @param value  what it holds
     */
    record Member(int line, int column, JsonValue value) {
    }

    /** The members of an object, in the file's order; null for any other value. */
    @SuppressWarnings("unchecked")
    Map<String, Member> members() {
        return content instanceof Map ? (Map<String, Member>) content : null;
    }
}
