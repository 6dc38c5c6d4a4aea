package com.orlu.orlu3rdalgoservice.tool.explain;

import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;
import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.tool.explain.TrialRequest.Asked;
import com.orlu.orlu3rdalgoservice.tool.explain.TrialRequest.Change;
import com.orlu.orlu3rdalgoservice.tool.explain.TrialRequest.Frame;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSize;
import com.orlu.orlu3rdalgoservice.tool.image.ImageBuffer;
import com.orlu.orlu3rdalgoservice.tool.model.Dependence;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeMap;

/**
 * Translates a request with one tag changed at a time, and records which parameters change. Tries the first
 * few values of each tag in one frame at a time, then each value in all frames at once. If a value in all
 * frames changes further parameters, tries this value in one frame at a time, too. So a tag in ten frames
 * costs about twice as much as a tag in one frame, not ten times as much.
 */
public final class Trials {
    /** The number of values that are always tried in each frame alone. */
    private static final int ALONE = 5;
    private static final int BASELINES = 3;
    private static final double NANOSECONDS = 1e9;

    private final TrialRequest mRequest;
    private final Recording mBaseline;
    private final Set<String> mUnsteady = new HashSet<>();

    private int mRuns;

    // A tag in the capture result or the composition of one frame, with the values to try.
    private static final class Subject {
        final int frame;
        final boolean inComposition;
        final String tag;
        final List<Object> values;
        final Set<String> parameters = new HashSet<>();
        final Set<String> together = new HashSet<>();
        String asked;

        Subject(int frame, boolean inComposition, String tag, Class<?> asked, List<Object> values) {
            this.frame = frame;
            this.inComposition = inComposition;
            this.tag = tag;
            this.asked = asked == null ? "" : asked.getSimpleName();
            this.values = values;
        }

        Dependence dependence() {
            return new Dependence(
                    frame, inComposition ? "composition" : "captureResult", tag, asked, parameters, together);
        }
    }

    private Trials(TrialRequest request) {
        mRequest = request;
        mBaseline = new Recording(run(List.of(), true));
    }

    /**
     * Runs the trials of a request over empty images. Images without a size in the file get `size`. Tries
     * only the tags in `only`, or all tags if `only` is empty. See of(file, inputs, outputs, library) for the
     * rest.
     */
    public static Dependences of(RequestFile file, FrameSize size, Set<String> only, String library)
            throws ErrnoException, MistakeException {
        List<ImageBuffer> images = new ArrayList<>();
        try {
            return of(file, empty(file.inputs(), size, images), empty(file.outputs(), size, images), only,
                    library);
        } finally {
            images.forEach(ImageBuffer::close);
        }
    }

    /**
     * Runs the trials of a request over these images, which the caller owns. Capture results and compositions
     * are restored afterwards. Loads `library`, the algorithm library for trials; the native library must
     * find the same file under the algorithm library's name.
     */
    public static Dependences of(
            RequestFile file, List<VImageIPC> inputs, List<VImageIPC> outputs, String library) {
        return of(file, inputs, outputs, Set.of(), library);
    }

    private static Dependences of(RequestFile file, List<VImageIPC> inputs, List<VImageIPC> outputs,
            Set<String> only, String library) {
        TrialLibrary.load(library);
        try (TrialRequest request = new TrialRequest(file, inputs, outputs)) {
            return of(request, only);
        }
    }

    private static List<VImageIPC> empty(List<ImagePlan> plans, FrameSize size, List<ImageBuffer> images)
            throws ErrnoException, MistakeException {
        List<VImageIPC> descriptors = new ArrayList<>();
        for (ImagePlan plan : plans) {
            images.add(ImageBuffer.empty(size.applyTo(plan)));
            descriptors.add(images.get(images.size() - 1).descriptor());
        }
        return descriptors;
    }

    private static Dependences of(TrialRequest request, Set<String> only) {
        long start = System.nanoTime();
        Trials trials = new Trials(request);
        List<Subject> subjects = trials.subjects();
        subjects.removeIf(subject -> !only.isEmpty() && !only.contains(subject.tag));
        trials.findUnsteady();
        Map<String, List<Subject>> byTag = new TreeMap<>();
        subjects.forEach(
                subject -> byTag.computeIfAbsent(subject.tag, tag -> new ArrayList<>()).add(subject));
        byTag.values().forEach(trials::tryTag);
        List<Dependence> all =
                byTag.values().stream().flatMap(List::stream).map(Subject::dependence).toList();
        String problem = trials.differences(List.of()).isEmpty() ? ""
                : "a trial changed the library's state: the original request now translates differently";
        double seconds = (System.nanoTime() - start) / NANOSECONDS;
        return new Dependences(all, trials.mUnsteady, trials.mRuns, seconds, problem);
    }

    private byte[] run(List<Change> changes, boolean recordsLookups) {
        ++mRuns;
        return mRequest.run(changes, recordsLookups);
    }

    // Sleeps between runs, so that values read from a clock differ.
    private void findUnsteady() {
        for (int i = 0; i < BASELINES; ++i) {
            try {
                Thread.sleep(2);
            } catch (InterruptedException e) {
                Thread.currentThread().interrupt();
            }
            mUnsteady.addAll(mBaseline.differences(run(List.of(), false)));
        }
    }

    private Set<String> differences(List<Change> changes) {
        return differences(changes, false);
    }

    private Set<String> differences(List<Change> changes, boolean recordsLookups) {
        byte[] record;
        try {
            record = run(changes, recordsLookups);
        } catch (IllegalArgumentException e) {
            // The tag can't hold this value.
            return Set.of();
        }
        Set<String> names = mBaseline.differences(record);
        if (!names.isEmpty() && !mUnsteady.isEmpty()) {
            names = new HashSet<>(names);
            names.removeAll(mUnsteady);
        }
        return names;
    }

    // Returns the tags that the first translation read.
    private List<Subject> subjects() {
        List<Map<String, Asked>> asked = new ArrayList<>();
        for (int i = 0; i < mRequest.frames().size(); ++i) {
            asked.add(mRequest.takeAsked(i));
        }
        List<Subject> subjects = new ArrayList<>();
        for (int i = 0; i < asked.size(); ++i) {
            for (Map.Entry<String, Asked> entry : asked.get(i).entrySet()) {
                addSubjects(subjects, i, entry.getKey(), entry.getValue());
            }
        }
        return subjects;
    }

    private void addSubjects(List<Subject> subjects, int frame, String tag, Asked asked) {
        Frame stores = mRequest.frames().get(frame);
        Object over = asked.composition() ? stores.composition().get(tag) : null;
        TagType type = TagTable.typeOf(tag);
        if (over != null) {
            List<Object> values = OtherValues.insteadOf(over);
            if (type != null && !type.stored().isInstance(over)) {
                // The translation treats a value of a wrong type like an absent tag.
                values.addAll(OtherValues.of(type));
            }
            subjects.add(new Subject(frame, true, tag, asked.captureResult(), values));
        }
        boolean isAskedThere = asked.captureResult() != null && type != null;
        Object held = isAskedThere ? stores.captureResult().get(tag) : null;
        if (held != null) {
            subjects.add(new Subject(frame, false, tag, asked.captureResult(), OtherValues.insteadOf(held)));
        } else if (over == null) {
            // The tag is absent. Only a composition can contain a tag that TagTable lacks.
            subjects.add(new Subject(frame, !isAskedThere, tag, asked.captureResult(),
                    OtherValues.of(type != null ? type : TagType.INT)));
        }
    }

    private void tryTag(List<Subject> subjects) {
        for (Subject subject : subjects) {
            for (int i = 0; i < Math.min(ALONE, subject.values.size()); ++i) {
                subject.parameters.addAll(
                        differences(List.of(change(subject, i)), subject.asked.isEmpty()));
            }
            learnAskedClass(subject);
        }
        Set<String> known = new HashSet<>();
        subjects.forEach(subject -> known.addAll(subject.parameters));
        int most = subjects.stream().mapToInt(subject -> subject.values.size()).max().orElse(0);
        for (int i = subjects.size() == 1 ? ALONE : 0; i < most; ++i) {
            tryTogether(subjects, i, known);
        }
    }

    private static Change change(Subject subject, int index) {
        return new Change(subject.frame, subject.inComposition, subject.tag, subject.values.get(index));
    }

    // When a trial removes the composition's value, the library reads the tag from the capture result. This
    // look-up shows the class that the library requests.
    private void learnAskedClass(Subject subject) {
        Asked asked = mRequest.takeAsked(subject.frame).get(subject.tag);
        if (subject.asked.isEmpty() && asked != null && asked.captureResult() != null) {
            subject.asked = asked.captureResult().getSimpleName();
        }
    }

    private void tryTogether(List<Subject> subjects, int index, Set<String> known) {
        List<Subject> having = subjects.stream().filter(subject -> index < subject.values.size()).toList();
        Set<String> found = differences(having.stream().map(subject -> change(subject, index)).toList());
        if (known.containsAll(found)) {
            return;
        }
        Set<String> unclaimed = new HashSet<>(found);
        for (Subject subject : having) {
            Set<String> alone = having.size() == 1 ? found : differences(List.of(change(subject, index)));
            subject.parameters.addAll(alone);
            unclaimed.removeAll(alone);
        }
        unclaimed.removeAll(known);
        having.forEach(subject -> subject.together.addAll(unclaimed));
        known.addAll(found);
    }
}
