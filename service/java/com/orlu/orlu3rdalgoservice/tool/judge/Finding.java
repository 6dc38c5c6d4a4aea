package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;

import java.util.Map;

/**
 * An observation about a request: a certain or possible error.
 *
 * @param kind   a machine-readable name
 * @param isSure whether the observation is certainly an error
 * @param what   the observation, one sentence
 * @param why    the usual causes and where to look
 * @param tab    the tab of the request's HTML page that shows the details
 */
public record Finding(String kind, boolean isSure, String what, String why, Tab tab) {
    enum Tab {
        PICTURES,
        MEMORY,
        TIMELINE,
        PARAMETERS,
        TAGS,
        RESULTS,
        LOG
    }

    static Finding wrong(String kind, Tab tab, String what, String why) {
        return new Finding(kind, true, what, why, tab);
    }

    static Finding look(String kind, Tab tab, String what, String why) {
        return new Finding(kind, false, what, why, tab);
    }

    public Map<String, Object> json() {
        return JsonWriter.object("kind", kind, "severity", isSure ? "wrong" : "look",
                "what", what.substring(0, 1).toUpperCase() + what.substring(1), "why", why,
                "tab", tab.name().toLowerCase());
    }
}
