package com.orlu.orlu3rdalgoservice.tool.model;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** What a request handed to the algorithm library, whichever that is: the probe saw it pass. */
public final class Handover {
    /** How every section begins. */
    public static final String SECTION_PREFIX = "orlu.algo.";

    private final List<Parameter> mParameters = new ArrayList<>();
    private final Call mProcess;

    /** What passed in these events, which are those of one request. */
    public Handover(RecordedEvents events) {
        for (Call call : events.calls("setValue")) {
            Event begin = call.begin();
            mParameters.add(new Parameter(begin.text("section"), begin.text("key"), begin.bytes("bytes")));
        }
        mProcess = events.last("process");
    }

    /** Every value that was set, in order; a key that was set again is there again. */
    public List<Parameter> parameters() {
        return mParameters;
    }

    /** The call that submitted the request; null when it went without an algorithm pass. */
    public Call process() {
        return mProcess;
    }

    /** The algorithm list as it was handed on; empty when there was no algorithm pass. */
    public List<String> algorithms() {
        return mProcess == null ? List.of() : mProcess.begin().texts("algoList");
    }

    /** Whether a later write replaces the one at this index. */
    public boolean isReplaced(int index) {
        Parameter parameter = mParameters.get(index);
        return mParameters.subList(index + 1, mParameters.size()).stream().anyMatch(parameter::hasKeyOf);
    }

    /** "section/key" of each key that was set more than once, with how often. */
    public Map<String, Integer> repeatedKeys() {
        Map<String, Integer> counts = new LinkedHashMap<>();
        mParameters.forEach(parameter -> counts.merge(parameter.name(), 1, Integer::sum));
        counts.values().removeIf(count -> count == 1);
        return counts;
    }

    /** "section/key" without the beginning that all sections have. */
    public static String shortName(String name) {
        return name.startsWith(SECTION_PREFIX) ? name.substring(SECTION_PREFIX.length()) : name;
    }
}
