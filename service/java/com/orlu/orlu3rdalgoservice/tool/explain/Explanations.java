package com.orlu.orlu3rdalgoservice.tool.explain;

import com.orlu.orlu3rdalgoservice.tool.explain.SourceLines.Place;
import com.orlu.orlu3rdalgoservice.tool.model.Dependence;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.model.Run;

import java.util.LinkedHashSet;
import java.util.List;
import java.util.Set;
import java.util.stream.IntStream;

/** Explains each parameter of a request: the code that wrote it, and the tags that it depends on. */
public final class Explanations {
    /** Appended to a tag or parameter: the parameter changes only if the tag changes in all frames. */
    static final String TOGETHER = " (all frames together)";
    private static final String UNKNOWN_PLACE = "an unknown line";

    private final Handover mHandover;
    private final Dependences mDependences;
    private final Readings mReadings;
    private final List<Place> mPlaces;
    private final Set<String> mNames = new LinkedHashSet<>();

    /**
     * One write of a parameter.
     *
     * @param isReplaced whether a later write replaces it
     * @param place      the function, file and line of the write
     */
    public record Write(Parameter parameter, boolean isReplaced, String place) {
    }

    /** Explains a run by its recorded look-ups and its trials. */
    public Explanations(Run run, Dependences dependences, SourceLines source) {
        mHandover = run.handover();
        mDependences = dependences;
        mReadings = Readings.of(run, dependences);
        mPlaces = source.of(run.events().calls("setValue"),
                mHandover.parameters().stream().map(Parameter::fullName).toList());
        mHandover.parameters().forEach(parameter -> mNames.add(parameter.fullName()));
        mNames.add(Dependences.ALGORITHMS);
    }

    Handover handover() {
        return mHandover;
    }

    /** Returns the names of the parameters that the request wrote, in order, and Dependences.ALGORITHMS. */
    public Set<String> names() {
        return mNames;
    }

    /**
     * Returns names(), and the parameters that the request would write if a tag had another value in one
     * frame or in all frames.
     */
    Set<String> possibleNames() {
        Set<String> possible = new LinkedHashSet<>(mNames);
        for (Dependence tag : mDependences.all()) {
            possible.addAll(tag.parameters());
            possible.addAll(tag.together());
        }
        return possible;
    }

    /** Returns every write of the request, in order. */
    public List<Write> writes() {
        return IntStream.range(0, mPlaces.size()).mapToObj(this::write).toList();
    }

    List<Write> writes(String name) {
        return IntStream.range(0, mPlaces.size())
                .filter(i -> mHandover.parameters().get(i).fullName().equals(name))
                .mapToObj(this::write).toList();
    }

    private Write write(int index) {
        Place place = mPlaces.get(index);
        return new Write(mHandover.parameters().get(index), mHandover.isReplaced(index),
                place == null ? UNKNOWN_PLACE : place.text());
    }

    /** Returns whether a parameter changes between identical runs. */
    public boolean isUnsteady(String name) {
        return mDependences.unsteady().contains(name);
    }

    /** Returns the tags that a parameter depends on, except those that affect most parameters. */
    public TagRows tags(String name) {
        TagRows rows = new TagRows();
        mDependences.of(name).stream().filter(tag -> !isGeneral(tag)).forEach(tag -> rows.add(tag.tag(),
                tag.frame(), text(tag) + (tag.parameters().contains(name) ? "" : TOGETHER)));
        return rows;
    }

    /** Returns the tags that affect most parameters. Reports list them once, not with each parameter. */
    public TagRows generalTags() {
        TagRows rows = new TagRows();
        mDependences.all().stream().filter(this::isGeneral)
                .forEach(tag -> rows.add(tag.tag(), tag.frame(), text(tag)));
        return rows;
    }

    private String text(Dependence tag) {
        Reading reading = mReadings.of(tag);
        return reading == null ? "read in trials only" : reading.text();
    }

    private boolean isGeneral(Dependence tag) {
        return tag.parameters().size() > mNames.size() / 2;
    }

    /** Returns why the tags of parameters are unknown or incomplete; "" if they are complete. */
    public String problem() {
        return mDependences.problem();
    }

    /** Returns how the tags were found, as text. */
    public String effort() {
        return "found by %d trials in %.1f s; docs/explain.md lists their limits"
                .formatted(mDependences.trials(), mDependences.seconds());
    }
}
