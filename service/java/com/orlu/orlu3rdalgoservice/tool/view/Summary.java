package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.AlgorithmPass;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.FrameSetPlan;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.request.ImagePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.run.RequestNames;
import com.orlu.orlu3rdalgoservice.tool.tags.ValueFormatter;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.PrintStream;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;

/** Prints a readable summary of a request's run. */
public final class Summary {
    private final RunReport mReport;
    private final PrintStream mTo;
    private final TextLayout mLines;

    /** Creates a summary with lines of at most 80 columns, or of any length if `wide` is set. */
    public Summary(RunReport report, PrintStream to, boolean wide) {
        mReport = report;
        mTo = to;
        mLines = new TextLayout(to, wide);
    }

    /** Prints the summary. The caller prints parameters, tags, explanations and the verdict. */
    public void print() {
        printRequest();
        if (mReport.verdict().status() == Verdict.UNUSABLE) {
            mLines.line("not run", "the algorithm library can't be used");
            mTo.println();
            return;
        }
        printIn();
        printAlgorithms();
        printBack();
        mLines.lines("images", mReport.images().files());
        mLines.lines("noise", mReport.images().noise());
        mLines.list("time", times());
        if (mReport.verdict().breaches() != null) {
            int breaches = mReport.verdict().breaches().size();
            mLines.line("contract", breaches == 0 ? "kept"
                    : "broken in " + breaches + (breaches == 1 ? " way" : " ways") + "; see the verdict");
        }
        if (!mReport.page().isEmpty()) {
            mLines.line("page", mReport.page());
        }
        if (mLines.hasCut()) {
            mLines.line("", "(lines that end in " + TextLayout.CUT + " are cut: --wide shows them whole)");
        }
        mTo.println();
    }

    private void printRequest() {
        RequestFile request = mReport.run().request();
        mLines.plain(request.about().isEmpty() ? request.file().toString() : request.about());
        mLines.line("file", request.file().toString());
        if (!mReport.run().name().equals(RequestNames.stem(request.file()))) {
            mLines.line("named", mReport.run().name()
                    + ", since the file of another request has the same name");
        }
        mLines.line("request", request.id() + " \"" + request.type() + "\" on client " + request.clientId()
                + (request.fullAsync() ? ", full-async" : ""));
    }

    private void printIn() {
        mLines.list("in", images(mReport.run().ran().inputs()));
        if (!mReport.run().ran().inputs().isEmpty()) {
            files(mReport.run().ran().inputs()).forEach(line -> mLines.line("", line));
            if (mReport.run().request().needsPhoto()) {
                mLines.list("", synthesis(mReport.run().request()));
            }
        }
        mLines.lines("out", mReport.run().outputs().stream().map(Summary::description).toList());
        int frames = mReport.run().request().frames().frames().size();
        mLines.line("frames", frames + (frames == 1 ? " capture result" : " capture results"));
    }

    private static List<String> images(List<ImagePlan> images) {
        if (images.isEmpty()) {
            return List.of("no image");
        }
        ImagePlan first = images.get(0);
        return List.of(images.size() + " x " + first.name() + " " + first.width() + "x" + first.height(),
                "stride " + first.strideBytes(), first.hardware() ? "hardware buffers" : "shared memory");
    }

    private static List<String> files(List<ImagePlan> images) {
        return images.stream().filter(image -> image.file() != null).map(image -> "frame " + image.frame()
                + " from " + image.file().path() + ", " + image.name() + " " + image.width() + "x"
                + image.height() + ", stride " + image.strideBytes()).toList();
    }

    private static List<String> synthesis(RequestFile request) {
        FrameSetPlan frames = request.frames();
        double noise = frames.frames().stream().mapToDouble(FramePlan::noise).max().orElse(0);
        double blur = frames.frames().stream().mapToDouble(FramePlan::blur).max().orElse(0);
        List<String> parts = new ArrayList<>(List.of("made of " + request.photo()));
        if (noise > 0) {
            parts.add("noise " + noise + " of 255");
        }
        if (blur > 0) {
            parts.add("blur up to " + blur + " pixels");
        }
        if (frames.reach() > 0) {
            parts.add("shifts up to " + frames.reach() + " pixels");
        }
        return parts;
    }

    private static String description(ImageLayout image) {
        Map<String, String> fields = image.fields();
        return fields.get("format") + " " + fields.get("width") + "x" + fields.get("height")
                + ", plane sizes " + fields.get("plane sizes");
    }

    private void printAlgorithms() {
        List<String> asked = mReport.run().askedAlgorithms();
        mLines.list("requested", orEmptyList(asked));
        Handover handover = mReport.run().handover();
        if (mReport.run().events().calls().isEmpty()) {
            mLines.line("passed on", "unknown: no probe is loaded in front of the algorithm library");
            return;
        }
        if (handover.process() == null) {
            mLines.line("passed on", "nothing: the request ran without an algorithm pass");
        } else {
            List<String> handedOn = handover.algorithms();
            mLines.list("passed on", orEmptyList(handedOn.stream()
                    .map(name -> asked.contains(name) ? name : name + " (appended)").toList()));
            optionalList("removed", asked.stream().filter(name -> !handedOn.contains(name)).toList());
            printPass();
        }
        mLines.line("parameters", handover.parameters().size() + " passed");
        List<String> again = new ArrayList<>();
        handover.repeatedKeys().forEach((key, count) -> again.add(key + " (" + count + " times)"));
        optionalList("set again", again);
    }

    private void printPass() {
        AlgorithmPass pass = mReport.run().pass();
        if (pass == null) {
            mLines.line("ran", "unknown: the algorithm library does not report it");
            return;
        }
        List<String> ran = new ArrayList<>(
                pass.ran().isEmpty() ? List.of("nothing: passed through") : pass.ran());
        int last = ran.size() - 1;
        ran.set(last, ran.get(last) + " in " + milliseconds(pass.milliseconds()));
        mLines.list("ran", ran);
        List<String> nobody = new ArrayList<>(mReport.run().idleAlgorithms());
        nobody.addAll(pass.skipped());
        optionalList("not run", nobody);
        if (!pass.skipped().isEmpty() && nobody.size() == pass.skipped().size()) {
            mLines.line("", "(unknown to the algorithm library, or without work to do)");
        }
        mLines.lines("", frames(pass.frames()));
    }

    private void optionalList(String label, List<String> parts) {
        if (!parts.isEmpty()) {
            mLines.list(label, parts);
        }
    }

    private static List<String> orEmptyList(List<String> algorithms) {
        return algorithms.isEmpty() ? List.of("(empty list)") : algorithms;
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
        for (int i = 0; i < mReport.run().ran().put().size(); ++i) {
            for (Map.Entry<String, Object> value : mReport.run().ran().put().get(i).entrySet()) {
                put.add("frame " + i + "  " + value.getKey() + " = " + ValueFormatter.text(value.getValue()));
            }
        }
        mLines.lines("put", put.isEmpty() ? List.of("nothing") : put);
        List<String> changes = changes();
        mLines.lines("changed", changes.isEmpty() ? List.of("no output descriptor") : changes);
        mReport.run().ran().callbacks().forEach(values -> mLines.list("callback", callback(values)));
    }

    private List<String> changes() {
        List<String> lines = new ArrayList<>();
        for (int i = 0; i < mReport.run().results().size(); ++i) {
            Map<String, String> after = mReport.run().results().get(i).fields();
            for (Map.Entry<String, String> field : mReport.run().outputs().get(i).fields().entrySet()) {
                String now = after.get(field.getKey());
                if (!field.getValue().equals(now)) {
                    lines.add("output " + i + "  " + field.getKey() + " " + field.getValue() + " -> " + now);
                }
            }
        }
        return lines;
    }

    private static List<String> callback(Map<String, Object> values) {
        List<String> parts = new ArrayList<>();
        values.forEach((key, value) -> parts.add(key + " = " + ValueFormatter.text(value)));
        return parts;
    }

    private List<String> times() {
        List<String> parts = new ArrayList<>();
        mReport.run().milliseconds().forEach(
                (stage, time) -> parts.add(stage + " " + milliseconds(time)));
        return parts;
    }

    private static String milliseconds(double value) {
        return "%.1f ms".formatted(value);
    }
}
