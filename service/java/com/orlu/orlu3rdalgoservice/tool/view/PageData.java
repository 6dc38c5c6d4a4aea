package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.explain.Explanations;
import com.orlu.orlu3rdalgoservice.tool.explain.SourceLines;
import com.orlu.orlu3rdalgoservice.tool.explain.TagPrinter;
import com.orlu.orlu3rdalgoservice.tool.explain.TagRows;
import com.orlu.orlu3rdalgoservice.tool.json.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.judge.Exhibits;
import com.orlu.orlu3rdalgoservice.tool.judge.Finding;
import com.orlu.orlu3rdalgoservice.tool.judge.ImageFindings;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.judge.VerdictFindings;
import com.orlu.orlu3rdalgoservice.tool.model.AlgorithmPass;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.tags.HeldValue;

import java.io.ByteArrayOutputStream;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.HexFormat;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** All that a page shows of one request, but the timeline and the log, as JSON. */
final class PageData {
    private final RunReport mReport;
    private final Exhibits mExhibits;
    private final SourceLines mSource;
    private final Map<String, Object> mJson = new LinkedHashMap<>();

    /** The exhibits are null when the process ended before they were there. */
    PageData(RunReport report, Exhibits exhibits, SourceLines source) {
        mReport = report;
        mExhibits = exhibits;
        mSource = source;
    }

    Map<String, Object> json() {
        addRequest();
        addAlgorithms();
        addFindings();
        if (mExhibits != null) {
            mJson.put("images", mExhibits.json());
        }
        if (mReport.verdict().status() != Verdict.UNUSABLE) {
            mSource.learn(mReport.run().events());
            addParameters();
            addTags();
        }
        addResults();
        return mJson;
    }

    private void addRequest() {
        RequestFile request = mReport.run().request();
        mJson.put("about", request.about());
        mJson.put("file", request.file().toString());
        mJson.put("id", request.id());
        mJson.put("type", request.type());
        mJson.put("client", request.clientId());
        mJson.put("fullAsync", request.fullAsync());
        Map<String, Object> verdict = new LinkedHashMap<>();
        verdict.put("ok", mReport.verdict().status() == Verdict.OK);
        verdict.put("line", mReport.verdict().line());
        verdict.put("reasons", strings(mReport.verdict().reasons()));
        mJson.put("verdict", verdict);
        Map<String, Object> times = new LinkedHashMap<>();
        mReport.run().milliseconds().forEach(times::put);
        mJson.put("milliseconds", times);
    }

    private void addAlgorithms() {
        Map<String, Object> algorithms = new LinkedHashMap<>();
        algorithms.put("asked", strings(mReport.run().askedAlgorithms()));
        Handover handover = mReport.run().handover();
        if (handover.process() != null) {
            algorithms.put("handedOn", strings(handover.algorithms()));
        }
        AlgorithmPass pass = mReport.run().pass();
        if (pass != null) {
            algorithms.put("ran", strings(pass.ran()));
            algorithms.put("milliseconds", pass.milliseconds());
            List<Object> frames = new ArrayList<>();
            for (AlgorithmPass.Frame frame : pass.frames()) {
                Map<String, Object> json = new LinkedHashMap<>();
                json.put("kept", frame.kept());
                if (!Double.isNaN(frame.sharpness())) {
                    json.put("sharpness", frame.sharpness());
                }
                frames.add(json);
            }
            algorithms.put("frames", frames);
        }
        mJson.put("algorithms", algorithms);
    }

    private void addFindings() {
        List<Finding> findings = new ArrayList<>(VerdictFindings.of(mReport.verdict()));
        if (mExhibits != null) {
            findings.addAll(new ImageFindings(mExhibits, mReport.run().handover().process() != null).all());
        }
        findings.sort(Comparator.comparing(finding -> !finding.isSure()));
        List<Object> array = new ArrayList<>();
        findings.forEach(finding -> array.add(finding.json()));
        mJson.put("findings", array);
    }

    private void addParameters() {
        Explanations explanations = new Explanations(mReport.run(), mReport.dependences(), mSource);
        List<Object> writes = new ArrayList<>();
        for (Explanations.Write write : explanations.writes()) {
            Parameter parameter = write.parameter();
            Map<String, Object> json = new LinkedHashMap<>();
            json.put("section", Handover.shortName(parameter.section()));
            json.put("key", parameter.key());
            json.put("name", parameter.fullName());
            json.put("type", parameter.type());
            json.put("value", parameter.text());
            json.put("bytes", parameter.bytes().length);
            json.put("hex", HexFormat.of().formatHex(parameter.bytes()));
            json.put("replaced", write.isReplaced());
            json.put("place", write.place());
            writes.add(json);
        }
        mJson.put("parameters", writes);
        Map<String, Object> explained = new LinkedHashMap<>();
        for (String name : explanations.names()) {
            Map<String, Object> json = new LinkedHashMap<>();
            json.put("unsteady", explanations.isUnsteady(name));
            json.put("tags", rows(explanations.tags(name)));
            explained.put(name, json);
        }
        mJson.put("explained", explained);
        mJson.put("generalTags", rows(explanations.generalTags()));
        mJson.put("explanationProblem", explanations.problem());
        mJson.put("explanationEffort", explanations.effort());
    }

    private void addTags() {
        List<Object> groups = new ArrayList<>();
        new TagPrinter(mReport.run(), mReport.dependences()).groups().forEach((heading, rows) -> {
            Map<String, Object> group = new LinkedHashMap<>();
            group.put("heading", heading);
            group.put("rows", rows(rows));
            groups.add(group);
        });
        mJson.put("tags", groups);
    }

    // Each as [tag, frames, what is said].
    private static List<Object> rows(TagRows rows) {
        List<Object> array = new ArrayList<>();
        rows.rows().forEach(row -> array.add(strings(List.of(row.tag(), row.frames(), row.text()))));
        return array;
    }

    private void addResults() {
        List<Object> put = new ArrayList<>();
        for (int i = 0; i < mReport.run().put().size(); ++i) {
            for (Map.Entry<String, Object> value : mReport.run().put().get(i).entrySet()) {
                put.add(strings(List.of("frame " + i, value.getKey(),
                        JsonWriter.line(HeldValue.json(value.getValue())))));
            }
        }
        mJson.put("put", put);
        List<Object> descriptors = new ArrayList<>();
        for (int i = 0; i < mReport.run().outputsAfter().size(); ++i) {
            int output = i;
            Map<String, String> after = mReport.run().outputsAfter().get(i).fields();
            mReport.run().outputsBefore().get(i).fields().forEach((field, before) -> descriptors.add(
                    strings(List.of("output " + output, field, before, String.valueOf(after.get(field))))));
        }
        mJson.put("descriptors", descriptors);
        List<Object> callbacks = new ArrayList<>();
        for (Map<String, Object> callback : mReport.run().callbacks()) {
            Map<String, Object> json = new LinkedHashMap<>();
            callback.forEach((key, value) -> json.put(key, HeldValue.json(value)));
            callbacks.add(json);
        }
        mJson.put("callbacks", callbacks);
        ByteArrayOutputStream printed = new ByteArrayOutputStream();
        new Summary(mReport, new PrintStream(printed, true, StandardCharsets.UTF_8), true).print();
        mJson.put("crash", mReport.crash());
        mJson.put("printed", printed.toString(StandardCharsets.UTF_8));
    }

    private static Object strings(List<String> texts) {
        List<Object> array = new ArrayList<>();
        texts.forEach(array::add);
        return array;
    }
}
