package com.orlu.orlu3rdalgoservice.tool.judge;

import com.orlu.orlu3rdalgoservice.tool.model.Call;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;

import java.util.ArrayList;
import java.util.List;

/**
 * Checks whether an algorithm library is usable. Examines only the events of loading the library, filling in
 * its table and creating a client.
 */
public final class LibraryCheck {
    // If one of these is missing, no request is submitted, so synchronous requests time out.
    private static final List<String> MANDATORY = List.of("process", "getSize");
    // If one of these is missing, a request runs but loses its parameters or results.
    private static final List<String> CARRYING_VALUES = List.of("createMetadata", "setValue", "getValue");

    private LibraryCheck() {
    }

    /** Returns the verdict on these events: UNUSABLE, or OK if they show no fault. */
    public static Verdict of(RecordedEvents events) {
        List<String> reasons = new ArrayList<>();
        checkLoad(events.last("load"), reasons);
        if (reasons.isEmpty()) {
            addMissing(events, MANDATORY, reasons);
            checkClient(events, reasons);
        }
        return reasons.isEmpty() ? Verdict.ok() : new Verdict(Verdict.UNUSABLE, reasons);
    }

    /** Returns the path of the algorithm library that the probe loaded; "" if unknown. */
    static String path(RecordedEvents events) {
        Call load = events.last("load");
        return load == null ? "" : load.begin().text("path");
    }

    private static void checkLoad(Call load, List<String> reasons) {
        if (load == null || load.end() == null || load.returned(0)) {
            return;
        }
        String path = load.begin().text("path");
        String error = load.end().text("error");
        if (path.isEmpty()) {
            reasons.add("no algorithm library was found: " + error);
        } else if (load.end().text("stage").equals("entry")) {
            reasons.add("the algorithm library " + path + " has no AlgoInterfaceEntry: " + error);
        } else {
            reasons.add("the algorithm library can't be opened: " + (error.contains(path) ? "" : path + ": ")
                    + error);
        }
    }

    /** Adds a reason if the library lacks operations that carry parameters or results. */
    static void addMissingCarriers(RecordedEvents events, List<String> reasons) {
        addMissing(events, CARRYING_VALUES, reasons);
    }

    private static void addMissing(RecordedEvents events, List<String> needed, List<String> reasons) {
        List<Event> tables = events.events("table");
        List<String> missing = new ArrayList<>(needed);
        missing.retainAll(tables.isEmpty() ? List.of() : tables.get(tables.size() - 1).texts("missing"));
        if (!missing.isEmpty()) {
            reasons.add("the algorithm library " + path(events) + " lacks " + String.join(", ", missing));
        }
    }

    private static void checkClient(RecordedEvents events, List<String> reasons) {
        for (String operation : List.of("entry", "createClient")) {
            Call call = events.last(operation);
            if (call != null && call.hasThrown()) {
                reasons.add(operation + " " + call.outcome());
            }
        }
        Call create = events.last("createClient");
        if (create != null && create.returned(0)) {
            reasons.add("createClient returned no client");
        }
    }
}
