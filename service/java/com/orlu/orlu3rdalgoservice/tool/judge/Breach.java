package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.model.Event;

import java.util.Map;

/**
 * A breach of the contract between the service and the algorithm library.
 *
 * @param by    the side that broke the contract
 * @param kind  a machine-readable name, such as "dead-client"
 * @param event the first event that shows the breach
 * @param count how often events of the same operation showed the same breach
 */
public record Breach(Side by, String kind, Event event, String expected, String found, int count) {
    /** The two sides of the contract. */
    public enum Side {
        SERVICE("service"),
        LIBRARY("algorithm library");

        private final String mName;

        Side(String name) {
            mName = name;
        }
    }

    Breach again() {
        return new Breach(by, kind, event, expected, found, count + 1);
    }

    /** Returns the breach as a reason for a verdict. */
    String line() {
        return "breach of the contract by the %s: %s (event %d) %s, expected %s%s".formatted(by.mName,
                event.operation(), event.number("n"), found, expected,
                count == 1 ? "" : " (" + count + " times)");
    }

    public Map<String, Object> json() {
        return JsonWriter.object("by", by.mName, "kind", kind, "operation", event.operation(), "event",
                event.number("n"), "expected", expected, "found", found, "count", count);
    }
}
