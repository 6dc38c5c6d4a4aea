package com.orlu.orlu3rdalgoservice.tool.explain;

import com.orlu.orlu3rdalgoservice.record.HeldValue;
import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.explain.Reading.Outcome;
import com.orlu.orlu3rdalgoservice.tool.model.Dependence;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;

import java.util.Collection;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The readings of all tags that were looked up in a request, or that the request has. */
public final class Readings {
    private record Key(int frame, String tag, boolean inComposition) {
    }

    private final Map<Key, Reading> mReadings = new LinkedHashMap<>();
    private final Dependences mDependences;

    /**
     * Creates the readings from the events of look-ups and from the frames' tags. Events of composition
     * look-ups don't contain the class that the library requests, so `dependences` provides it.
     * With Dependences.unknown(), the classes of composition values are not checked.
     */
    Readings(RecordedEvents events, List<FramePlan> frames, Dependences dependences) {
        mDependences = dependences;
        events.events("lookup").forEach(this::add);
        for (int i = 0; i < frames.size(); ++i) {
            FramePlan frame = frames.get(i);
            for (String tag : frame.composition().keySet()) {
                addNeverRead(i, tag, true, frame.composition().get(tag));
            }
            for (String tag : frame.captureResult().tags()) {
                addNeverRead(i, tag, false, frame.captureResult().get(tag));
            }
        }
    }

    /** Returns the readings of a run whose look-ups were recorded. `dependences` may be null. */
    public static Readings of(Run run, Dependences dependences) {
        return new Readings(run.events(), run.request().frames().frames(),
                dependences != null ? dependences : Dependences.unknown("no trials were made"));
    }

    /** Returns all readings in the order of the first look-up; tags never read are last. */
    public Collection<Reading> all() {
        return mReadings.values();
    }

    /**
     * Returns the reading of a dependence's tag in its frame and store (composition or capture result); null
     * if there is none.
     */
    public Reading of(Dependence tag) {
        return mReadings.get(new Key(tag.frame(), tag.tag(), tag.source().equals("composition")));
    }

    /** Returns the reading of the capture result's value that a composition's value hides; null if none. */
    public Reading under(Reading reading) {
        Reading under = reading.isInComposition()
                ? mReadings.get(new Key(reading.frame(), reading.tag(), false)) : null;
        return under == null || under.value().isEmpty() ? null : under;
    }

    /** Returns the reading of the composition's value that hides a capture result's value; null if none. */
    Reading over(Reading reading) {
        Reading over = reading.isInComposition() ? null
                : mReadings.get(new Key(reading.frame(), reading.tag(), true));
        return over == null || over.is(Outcome.NEVER_READ) ? null : over;
    }

    private void add(Event lookup) {
        int frame = (int) lookup.number("frame");
        String tag = lookup.text("tag");
        boolean inComposition = lookup.text("source").equals("composition");
        Outcome outcome = switch (lookup.text("outcome")) {
            case "found" -> Outcome.FOUND;
            case "wrongType" -> Outcome.WRONG_TYPE;
            case "thrown" -> Outcome.UNKNOWN;
            default -> Outcome.ABSENT;
        };
        Key inResult = new Key(frame, tag, false);
        if (inComposition && outcome == Outcome.ABSENT && mReadings.containsKey(inResult)) {
            return;
        }
        if (!inComposition) {
            // Removes the composition's reading: the composition was searched first and did not have the tag.
            mReadings.computeIfPresent(
                    new Key(frame, tag, true), (key, reading) -> reading.is(Outcome.ABSENT) ? null : reading);
        }
        String asked = inComposition ? askedClass(frame, tag) : lookup.text("asked");
        String held = lookup.text("held");
        if (inComposition && outcome == Outcome.FOUND && !fits(held, asked)) {
            outcome = Outcome.WRONG_TYPE;
        }
        String value = lookup.has("value") ? JsonWriter.line(lookup.fields().get("value")) : "";
        put(new Reading(frame, tag, lookup.text("source"), outcome, asked, held, value));
    }

    // A repeated look-up gives the same outcome, unless it asks for another type.
    private void put(Reading reading) {
        mReadings.merge(new Key(reading.frame(), reading.tag(), reading.isInComposition()), reading,
                (first, again) -> again.is(Outcome.WRONG_TYPE) ? again : first);
    }

    private void addNeverRead(int frame, String tag, boolean inComposition, Object value) {
        mReadings.putIfAbsent(new Key(frame, tag, inComposition), new Reading(frame, tag,
                inComposition ? "composition" : "captureResult", Outcome.NEVER_READ, "",
                value.getClass().getSimpleName(), JsonWriter.line(HeldValue.json(value))));
    }

    private String askedClass(int frame, String tag) {
        return mDependences.of(frame, tag).stream().map(Dependence::asked).findFirst().orElse("");
    }

    // A composition may hold int[] where a capture result holds Integer[].
    private static boolean fits(String held, String asked) {
        String boxed = held.isEmpty() ? "" : held.equals("int[]") ? "Integer[]"
                : held.substring(0, 1).toUpperCase() + held.substring(1);
        return asked.isEmpty() || asked.equals(held) || asked.equals(boxed);
    }
}
