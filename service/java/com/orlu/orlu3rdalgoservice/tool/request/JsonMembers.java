package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;

import java.util.Map;

/**
 * The members of one object, with defaults for those that are not there. A member with a default that can't
 * be read is noted as a mistake, and has the default as well.
 */
final class JsonMembers {
    private final JsonField mOwner;
    private final Map<String, JsonField> mMembers;

    JsonMembers(JsonField owner, Map<String, JsonField> members) {
        mOwner = owner;
        mMembers = members;
    }

    /** No member at all, for an object that is not there. */
    static JsonMembers none() {
        return new JsonMembers(null, Map.of());
    }

    boolean has(String name) {
        return mMembers.containsKey(name);
    }

    /** A member, null when it is not there. */
    JsonField get(String name) {
        return mMembers.get(name);
    }

    /** A member that must be there. */
    JsonField require(String name) throws MistakeException {
        if (!has(name)) {
            throw mOwner.error("needs the field " + name);
        }
        return get(name);
    }

    private <T> T optional(String name, Mistakes.Reading<T> reading, T fallback) {
        return has(name) ? get(name).mistakes().attempt(reading, fallback) : fallback;
    }

    String string(String name, String fallback) {
        return optional(name, () -> get(name).string(), fallback);
    }

    boolean bool(String name, boolean fallback) {
        return optional(name, () -> get(name).bool(), fallback);
    }

    int integer(String name, int least, int most, int fallback) {
        return optional(name, () -> get(name).integer(least, most), fallback);
    }

    long integer(String name, long least, long most, long fallback) {
        return optional(name, () -> get(name).integer(least, most), fallback);
    }

    double number(String name, double least, double most, double fallback) {
        return optional(name, () -> get(name).number(least, most), fallback);
    }

    /** Members of an object that may only have the fields named; none when it is not there, or no object. */
    JsonMembers members(String name, String... known) {
        return optional(name, () -> get(name).members(known), none());
    }

    /** An even number from 0, which a member that is not there is. */
    int side(String name, int most) {
        return optional(name, () -> {
            int side = get(name).integer(0, most);
            if (side % 2 != 0) {
                throw get(name).needs("an even number");
            }
            return side;
        }, 0);
    }
}
