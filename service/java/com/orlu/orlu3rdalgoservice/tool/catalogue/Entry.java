package com.orlu.orlu3rdalgoservice.tool.catalogue;

import java.util.Collection;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.stream.Collectors;

/** One tag, algorithm, parameter, format or sample, with its facts in the order in which they are shown. */
final class Entry {
    private final String mName;
    private final Map<String, Object> mFacts = new LinkedHashMap<>();

    Entry(String name) {
        mName = name;
        mFacts.put("name", name);
    }

    String name() {
        return mName;
    }

    /** Adds a fact: a text, a number, a list of texts, or one of maps. Returns this. */
    Entry with(String field, Object value) {
        mFacts.put(field, value instanceof Collection<?> elements ? List.copyOf(elements) : value);
        return this;
    }

    Map<String, Object> facts() {
        return mFacts;
    }

    /** A fact as a text, lists with commas; "" where there is none. */
    String text(String field) {
        return text(mFacts.getOrDefault(field, ""));
    }

    /** A value as a text; the values of a map with blanks between. */
    static String text(Object value) {
        if (value instanceof List<?> elements) {
            return joined(elements, ", ");
        }
        if (value instanceof Map<?, ?> members) {
            return joined(members.values(), "  ");
        }
        return String.valueOf(value);
    }

    private static String joined(Collection<?> values, String between) {
        return values.stream().map(value -> text((Object) value)).collect(Collectors.joining(between));
    }

    /** Whether a word is its whole name, or all behind a slash of its name. */
    boolean isCalled(String word) {
        return mName.equals(word) || mName.endsWith("/" + word);
    }

    /** Whether a word is a part of its name, in whatever case. */
    boolean contains(String word) {
        return mName.toLowerCase(Locale.ROOT).contains(word.toLowerCase(Locale.ROOT));
    }
}
