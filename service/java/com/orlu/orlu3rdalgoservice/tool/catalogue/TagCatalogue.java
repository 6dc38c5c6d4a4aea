package com.orlu.orlu3rdalgoservice.tool.catalogue;

import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;

import com.orlu.orlu3rdalgoservice.tool.tags.Enumerations;
import com.orlu.orlu3rdalgoservice.tool.tags.TagFacts;

import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The tags of capture results and compositions. */
final class TagCatalogue {
    /** Most parameters hang on it, so that those without it say nothing. */
    private static final String ALGORITHMS = "orlu.control.algoType";
    private static final int LONGEST_VALUE = 60;
    private static final String MOST = "nearly all parameters of some requests";

    private static final String HELP =
            "Lists the tags of capture results and compositions: type, unit and meaning. Of one tag it "
            + "says also which values have a meaning, which functions read it or put it back, which "
            + "parameters change with it, what those are where no tag is there, and what samples set.";

    private TagCatalogue() {
    }

    static Catalogue catalogue() {
        return new Catalogue("tag", HELP, List.of("type", "unit"),
                entry -> entry.text("meaning"), TagCatalogue::entries);
    }

    private static List<Entry> entries() {
        List<Sample> samples = Sample.all();
        return TagTable.names().stream().map(tag -> entry(tag, samples)).toList();
    }

    private static Entry entry(String tag, List<Sample> samples) {
        TagType type = TagTable.typeOf(tag);
        TagFacts facts = TagFacts.of(tag);
        List<String> parameters = Found.parametersOf(tag);
        return new Entry(tag).with("type", type.name()).with("javaType", type.stored().getSimpleName())
                .with("unit", facts.unit()).with("meaning", facts.meaning())
                .with("values", values(tag, facts))
                .with("readBy", readers(tag)).with("putBackBy", Found.puttersOf(tag))
                .with("changes", parameters)
                .with("changesMost", Found.changesMost(tag) ? List.of(MOST) : List.of())
                .with("whenAbsent", absent(tag, parameters)).with("samples", samples(tag, samples));
    }

    private static Object readers(String tag) {
        List<String> readers = Found.readersOf(tag);
        return readers.isEmpty() && Found.puttersOf(tag).isEmpty()
                ? List.of("nobody: no function of the library asks for it") : readers;
    }

    private static List<Map<String, String>> values(String tag, TagFacts facts) {
        Map<String, String> meanings = new LinkedHashMap<>();
        List<String> names = Enumerations.names(tag);
        for (int i = 0; i < names.size(); ++i) {
            meanings.put(String.valueOf(i), names.get(i));
        }
        facts.values().forEach(value ->
                meanings.merge(value.value(), value.meaning(), (name, meaning) -> name + ". " + meaning));
        return records("value", meanings, "meaning");
    }

    // What the parameters are without any tag; of several values all that were found.
    private static List<Map<String, String>> absent(String tag, List<String> parameters) {
        Map<String, String> values = new LinkedHashMap<>();
        for (String parameter : parameters) {
            List<String> absent = Found.absentValues(parameter);
            if (!absent.isEmpty() && !tag.equals(ALGORITHMS)) {
                values.put(parameter, String.join(" or ", absent));
            }
        }
        return records("parameter", values, "value");
    }

    private static List<Map<String, String>> samples(String tag, List<Sample> samples) {
        Map<String, String> byValue = new LinkedHashMap<>();
        for (Sample sample : samples) {
            Map<String, Object> tags = sample.tags();
            if (tags.containsKey(tag)) {
                byValue.merge(shortened(Json.line(tags.get(tag))), sample.name(),
                        (one, more) -> one + ", " + more);
            }
        }
        return records("value", byValue, "in");
    }

    private static String shortened(String value) {
        return value.length() <= LONGEST_VALUE ? value : value.substring(0, LONGEST_VALUE) + " ...";
    }

    private static List<Map<String, String>> records(String key, Map<String, String> values, String value) {
        return values.entrySet().stream()
                .map(entry -> Ordered.of(key, entry.getKey(), value, entry.getValue())).toList();
    }
}
