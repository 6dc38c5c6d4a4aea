package com.orlu.orlu3rdalgoservice.tool.report;

import com.orlu.orlu3rdalgoservice.tool.image.ImageState;
import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.FrameSetPlan;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;

import java.io.PrintStream;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;

/** Prints what happened to a request, for people. */
public final class Summary {
    private static final String INDENT = "  ";

    private final RequestReport mReport;
    private final PrintStream mTo;

    public Summary(RequestReport report, PrintStream to) {
        mReport = report;
        mTo = to;
    }

    public void print() {
        printIn();
        printAlgorithms();
        printBack();
        lines("images", mReport.images);
        lines("noise", mReport.noise);
        lines("problem", mReport.problems);
        line("time", times());
        mTo.println();
    }

    private void line(String label, String text) {
        mTo.println(INDENT + "%-12s".formatted(label) + text);
    }

    private void lines(String label, List<String> lines) {
        String shown = label;
        for (String text : lines) {
            line(shown, text);
            shown = "";
        }
    }

    private void printIn() {
        RequestFile request = mReport.request;
        mTo.println(request.about().isEmpty() ? request.file().toString() : request.about());
        line("file", request.file().toString());
        line("request", request.id() + " \"" + request.type() + "\" on client " + request.clientId()
                + (request.fullAsync() ? ", full-async" : ""));
        line("in", images(mReport.inputs));
        if (!mReport.inputs.isEmpty()) {
            line("", synthesis(request));
        }
        lines("out", mReport.outputsBefore.stream().map(Summary::description).toList());
        int frames = request.frames().frames().size();
        line("frames", frames + (frames == 1 ? " capture result" : " capture results"));
    }

    private static String images(List<ImagePlan> images) {
        if (images.isEmpty()) {
            return "no image";
        }
        ImagePlan first = images.get(0);
        return images.size() + " x " + first.name() + " " + first.width() + "x" + first.height() + ", stride "
                + first.strideBytes() + ", " + (first.hardware() ? "hardware buffers" : "shared memory");
    }

    private static String synthesis(RequestFile request) {
        FrameSetPlan frames = request.frames();
        double noise = frames.frames().stream().mapToDouble(FramePlan::noise).max().orElse(0);
        double blur = frames.frames().stream().mapToDouble(FramePlan::blur).max().orElse(0);
        List<String> parts = new ArrayList<>();
        if (noise > 0) {
            parts.add("noise " + noise + " of 255");
        }
        if (blur > 0) {
            parts.add("blur up to " + blur + " pixels");
        }
        if (frames.margin() > 0) {
            parts.add("shifts up to " + frames.margin() + " pixels");
        }
        return "made of " + request.photo() + (parts.isEmpty() ? "" : " with " + String.join(", ", parts));
    }

    private static String description(ImageState image) {
        Map<String, String> fields = image.fields();
        return fields.get("format") + " " + fields.get("width") + "x" + fields.get("height")
                + ", plane sizes " + fields.get("plane sizes");
    }

    private void printAlgorithms() {
        line("asked for", list(mReport.askedAlgorithms()));
        if (mReport.trace == null) {
            line("handed on", "not known: this algorithm library writes no trace");
            return;
        }
        Trace trace = mReport.trace;
        line("handed on", trace.algorithms == null ? "nothing: the request went without an algorithm pass"
                : list(trace.algorithms));
        if (trace.pass != null) {
            line("ran", ran(trace.pass.ran()) + " in " + milliseconds(trace.pass.milliseconds()));
            lines("", frames(trace.pass.frames()));
        }
        line("parameters", trace.parameters.size() + " handed over");
    }

    private static String ran(List<String> algorithms) {
        return algorithms.isEmpty() ? "nothing: passed through" : list(algorithms);
    }

    private static String list(List<String> algorithms) {
        return algorithms.isEmpty() ? "(empty list)" : String.join(", ", algorithms);
    }

    private static List<String> frames(List<AlgorithmPass.Frame> frames) {
        List<String> lines = new ArrayList<>();
        for (int i = 0; i < frames.size(); ++i) {
            AlgorithmPass.Frame frame = frames.get(i);
            lines.add("frame %d%s%s%s".formatted(i,
                    Double.isNaN(frame.sharpness()) ? "" : "  sharpness %.2f".formatted(frame.sharpness()),
                    frame.shift() == null ? ""
                            : "  moved by (%d, %d)".formatted(frame.shift()[0], frame.shift()[1]),
                    frame.kept() ? "  kept" : "  dropped"));
        }
        return lines;
    }

    private void printBack() {
        List<String> put = new ArrayList<>();
        for (int i = 0; i < mReport.put.size(); ++i) {
            for (Map.Entry<String, Object> value : mReport.put.get(i).entrySet()) {
                put.add("frame " + i + "  " + value.getKey() + " = " + ValueFormatter.text(value.getValue()));
            }
        }
        lines("put", put.isEmpty() ? List.of("nothing") : put);
        List<String> changes = changes();
        lines("changed", changes.isEmpty() ? List.of("no output descriptor") : changes);
        lines("callback", mReport.callbacks.stream().map(Summary::callback).toList());
    }

    private List<String> changes() {
        List<String> lines = new ArrayList<>();
        for (int i = 0; i < mReport.outputsAfter.size(); ++i) {
            Map<String, String> after = mReport.outputsAfter.get(i).fields();
            for (Map.Entry<String, String> field : mReport.outputsBefore.get(i).fields().entrySet()) {
                String now = after.get(field.getKey());
                if (!field.getValue().equals(now)) {
                    lines.add("output " + i + "  " + field.getKey() + " " + field.getValue() + " -> " + now);
                }
            }
        }
        return lines;
    }

    private static String callback(Map<String, Object> values) {
        List<String> parts = new ArrayList<>();
        values.forEach((key, value) -> parts.add(key + " = " + ValueFormatter.text(value)));
        return String.join(", ", parts);
    }

    private String times() {
        List<String> parts = new ArrayList<>();
        mReport.stopwatch.stages().forEach((stage, time) -> parts.add(stage + " " + milliseconds(time)));
        return String.join(", ", parts);
    }

    private static String milliseconds(double value) {
        return "%.1f ms".formatted(value);
    }
}
