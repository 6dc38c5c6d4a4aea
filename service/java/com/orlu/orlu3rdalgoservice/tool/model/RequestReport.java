package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.image.ImageState;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch;
import com.orlu.orlu3rdalgoservice.tool.trial.Dependences;

import java.util.ArrayList;
import java.util.List;
import java.util.Map;

/** All that happened to one request. Filled in by RequestRunner, read by the printers. */
public final class RequestReport {
    /** How long a request is waited for: by the library itself, or here for a full-async one. */
    public static final int CALLBACK_SECONDS = 10;

    public final RequestFile request;
    /** What its files are named after; no other request of this run has this name. */
    public final String name;
    public final Stopwatch stopwatch = new Stopwatch();
    /** The images as they were handed in, with their sizes. */
    public final List<ImagePlan> inputs = new ArrayList<>();
    /** Descriptions of the outputs before and after. */
    public final List<ImageState> outputsBefore = new ArrayList<>();
    public final List<ImageState> outputsAfter = new ArrayList<>();
    /** For each composition, the keys that the native side put or changed. */
    public final List<Map<String, Object>> put = new ArrayList<>();
    /** What was reported to Java while the request ran. */
    public List<Map<String, Object>> callbacks = List.of();
    /** What passed between the library and the algorithm library. */
    public final RecordedEvents events = new RecordedEvents();
    /** When the request was submitted and when the wait for its end was over, by System.nanoTime(). */
    public long waitStart;
    public long waitEnd;
    /** What the algorithm library says that it did; null when it says nothing. */
    public AlgorithmPass pass;
    /** Lines on the images that were written. */
    public final List<String> images = new ArrayList<>();
    /** Lines on how much noise went. */
    public final List<String> noise = new ArrayList<>();
    /** Calls into the native library that returned an error. */
    public final List<String> problems = new ArrayList<>();
    /** What is wrong with the outputs, if the algorithms were to write them. */
    public final List<String> outputProblems = new ArrayList<>();
    public Verdict verdict = Verdict.ok();
    /** What is known of the end of the process, when that came first; else "". */
    public String crash = "";
    /** A line on the page that shows all this; "" for none. */
    public String page = "";
    /** Which tags the parameters depend on, when somebody asked; else null. */
    public Dependences dependences;

    /** The name is one of RequestNames. */
    public RequestReport(RequestFile request, String name) {
        this.request = request;
        this.name = name;
    }

    /** What the request handed to the algorithm library, of the events so far. */
    public Handover handover() {
        return new Handover(events);
    }

    /** Algorithms handed on that did nothing though the library has them; none when it does not say. */
    public List<String> idleAlgorithms() {
        List<String> idle = new ArrayList<>(handover().algorithms());
        if (pass == null) {
            return List.of();
        }
        idle.removeAll(pass.ran());
        idle.removeAll(pass.skipped());
        return idle;
    }

    /** The algorithm list that the request asks for, empty when it has none. */
    public List<String> askedAlgorithms() {
        List<FramePlan> frames = request.frames().frames();
        Object list = frames.isEmpty() ? null : frames.get(0).composition().get("orlu.control.algoType");
        return list instanceof String[] names ? List.of(names) : List.of();
    }

    /** The frame to compare the outputs with: the one that the result names, else the first. */
    public BaseFrame baseFrame() {
        return BaseFrame.of(this);
    }
}
