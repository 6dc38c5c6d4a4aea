package com.orlu.orlu3rdalgoservice.tool.request;

import java.util.Map;

/** The members of one object of a request file, with defaults for those that are not there. */
final class JsonMembers {
    private final JsonField mOwner;
    private final Map<String, JsonField> mMembers;

    JsonMembers(JsonField owner, Map<String, JsonField> members) {
        mOwner = owner;
        mMembers = members;
    }

    boolean has(String name) {
        return mMembers.containsKey(name);
    }

    /** A member, null when it is not there. */
    JsonField get(String name) {
        return mMembers.get(name);
    }

    /** A member that must be there. */
    JsonField require(String name) throws RequestFileException {
        if (!has(name)) {
            throw mOwner.error("needs the field " + name);
        }
        return get(name);
    }

    String string(String name, String fallback) throws RequestFileException {
        return has(name) ? get(name).string() : fallback;
    }

    boolean bool(String name, boolean fallback) throws RequestFileException {
        return has(name) ? get(name).bool() : fallback;
    }

    int integer(String name, int least, int most, int fallback) throws RequestFileException {
        return has(name) ? get(name).integer(least, most) : fallback;
    }

    long integer(String name, long least, long most, long fallback) throws RequestFileException {
        return has(name) ? get(name).integer(least, most) : fallback;
    }

    double number(String name, double least, double most, double fallback) throws RequestFileException {
        return has(name) ? get(name).number(least, most) : fallback;
    }
}
