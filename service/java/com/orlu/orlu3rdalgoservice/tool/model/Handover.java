package com.orlu.orlu3rdalgoservice.tool.model;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The data that a request passed to the algorithm library, as the probe recorded it. */
public final class Handover {
    /** The common prefix of all sections. */
    public static final String SECTION_PREFIX = "orlu.algo.";

    private final List<Parameter> mParameters = new ArrayList<>();
    private final Call mProcess;

    /** Reads the events of one request. */
    public Handover(RecordedEvents events) {
        for (Call call : events.calls("setValue")) {
            Event begin = call.begin();
            mParameters.add(new Parameter(begin.text("section"), begin.text("key"), begin.bytes("bytes")));
        }
        mProcess = events.last("process");
    }

    /** The writes of parameters, in order. A parameter that is written twice appears twice. */
    public List<Parameter> parameters() {
        return mParameters;
    }

    /** The call that submitted the request; null if the request was not submitted. */
    public Call process() {
        return mProcess;
    }

    /** The algorithm list passed to the algorithm library; empty if the request was not submitted. */
    public List<String> algorithms() {
        return mProcess == null ? List.of() : mProcess.begin().texts("algoList");
    }

    /** Whether a later write of the same key replaces the parameter at this index. */
    public boolean isReplaced(int index) {
        Parameter parameter = mParameters.get(index);
        return mParameters.subList(index + 1, mParameters.size()).stream().anyMatch(parameter::hasKeyOf);
    }

    /** Returns the names of the parameters written more than once, with the number of writes. */
    public Map<String, Integer> repeatedKeys() {
        Map<String, Integer> counts = new LinkedHashMap<>();
        mParameters.forEach(parameter -> counts.merge(parameter.name(), 1, Integer::sum));
        counts.values().removeIf(count -> count == 1);
        return counts;
    }

    /** "section/key" without the common prefix. */
    public static String shortName(String name) {
        return name.startsWith(SECTION_PREFIX) ? name.substring(SECTION_PREFIX.length()) : name;
    }
}
