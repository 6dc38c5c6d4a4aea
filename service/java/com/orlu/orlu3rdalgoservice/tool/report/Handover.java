package com.orlu.orlu3rdalgoservice.tool.report;

import com.orlu.orlu3rdalgoservice.tool.events.Call;
import com.orlu.orlu3rdalgoservice.tool.events.Event;
import com.orlu.orlu3rdalgoservice.tool.events.RecordedEvents;

import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** What a request handed to the algorithm library, whichever that is: the probe saw it pass. */
public final class Handover {
    private static final String SECTION_PREFIX = "orlu.algo.";

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
    boolean isReplaced(int index) {
        Parameter parameter = mParameters.get(index);
        return mParameters.subList(index + 1, mParameters.size()).stream().anyMatch(parameter::hasKeyOf);
    }

    /** "section/key" of each key that was set more than once, with how often. */
    Map<String, Integer> repeatedKeys() {
        Map<String, Integer> counts = new LinkedHashMap<>();
        mParameters.forEach(parameter -> counts.merge(shortName(parameter), 1, Integer::sum));
        counts.values().removeIf(count -> count == 1);
        return counts;
    }

    /** The section without the beginning that all have, and the key. */
    static String shortName(Parameter parameter) {
        String section = parameter.section();
        return (section.startsWith(SECTION_PREFIX) ? section.substring(SECTION_PREFIX.length()) : section)
                + "/" + parameter.key();
    }
}
