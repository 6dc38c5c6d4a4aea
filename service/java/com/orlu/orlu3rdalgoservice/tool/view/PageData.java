package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.record.HeldValue;
import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.explain.Explanations;
import com.orlu.orlu3rdalgoservice.tool.explain.SourceLines;
import com.orlu.orlu3rdalgoservice.tool.explain.TagPrinter;
import com.orlu.orlu3rdalgoservice.tool.explain.TagRows;
import com.orlu.orlu3rdalgoservice.tool.judge.Exhibits;
import com.orlu.orlu3rdalgoservice.tool.judge.Finding;
import com.orlu.orlu3rdalgoservice.tool.judge.ImageFindings;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.judge.VerdictFindings;
import com.orlu.orlu3rdalgoservice.tool.model.AlgorithmPass;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;

import java.io.ByteArrayOutputStream;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.HexFormat;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The JSON data of the page about one request, without the timeline and the log. */
final class PageData {
    private final RunReport mReport;
    private final Run mRun;
    private final Exhibits mExhibits;
    private final SourceLines mSource;
    private final Map<String, Object> mJson = new LinkedHashMap<>();

    /** `exhibits` is null if the request's inputs can't be recreated. */
    PageData(RunReport report, Exhibits exhibits, SourceLines source) {
        mReport = report;
        mRun = report.run();
        mExhibits = exhibits;
        mSource = source;
    }

    Map<String, Object> json() {
        RequestFile request = mRun.request();
        mJson.putAll(JsonWriter.object("about", request.about(), "file", request.file().toString(),
                "id", request.id(), "type", request.type(), "client", request.clientId(),
                "fullAsync", request.fullAsync(), "verdict", verdict(),
                "milliseconds", mRun.milliseconds(), "algorithms", algorithms(), "findings", findings()));
        if (mExhibits != null) {
            mJson.put("images", mExhibits.json());
        }
        if (mReport.verdict().status() != Verdict.UNUSABLE) {
            mSource.learn(mRun.events());
            addParameters();
            mJson.put("tags", tags());
        }
        addResults();
        return mJson;
    }

    private Map<String, Object> verdict() {
        Verdict verdict = mReport.verdict();
        return JsonWriter.object("ok", verdict.status() == Verdict.OK, "line", verdict.line(),
                "reasons", verdict.reasons());
    }

    private Map<String, Object> algorithms() {
        Map<String, Object> algorithms = JsonWriter.object("asked", mRun.askedAlgorithms());
        if (mRun.handover().process() != null) {
            algorithms.put("handedOn", mRun.handover().algorithms());
        }
        AlgorithmPass pass = mRun.pass();
        if (pass != null) {
            algorithms.putAll(JsonWriter.object("ran", pass.ran(), "milliseconds", pass.milliseconds(),
                    "frames", pass.frames().stream().map(frame -> Double.isNaN(frame.sharpness())
                            ? JsonWriter.object("kept", frame.kept())
                            : JsonWriter.object("kept", frame.kept(), "sharpness", frame.sharpness()))
                            .toList()));
        }
        return algorithms;
    }

    private List<Map<String, Object>> findings() {
        List<Finding> findings = new ArrayList<>(VerdictFindings.of(mReport.verdict()));
        if (mExhibits != null) {
            findings.addAll(new ImageFindings(mExhibits, mRun.handover().process() != null).all());
        }
        findings.sort(Comparator.comparing(finding -> !finding.isSure()));
        return findings.stream().map(Finding::json).toList();
    }

    private void addParameters() {
        Explanations explanations = new Explanations(mRun, mReport.dependences(), mSource);
        Map<String, Object> explained = new LinkedHashMap<>();
        for (String name : explanations.names()) {
            explained.put(name, JsonWriter.object("unsteady", explanations.isUnsteady(name),
                    "tags", rows(explanations.tags(name))));
        }
        mJson.putAll(JsonWriter.object(
                "parameters", explanations.writes().stream().map(PageData::write).toList(),
                "explained", explained, "generalTags", rows(explanations.generalTags()),
                "explanationProblem", explanations.problem(), "explanationEffort", explanations.effort()));
    }

    private static Map<String, Object> write(Explanations.Write write) {
        Parameter parameter = write.parameter();
        return JsonWriter.object("section", Handover.shortName(parameter.section()), "key", parameter.key(),
                "name", parameter.fullName(), "type", parameter.type(), "value", parameter.text(),
                "bytes", parameter.bytes().length, "hex", HexFormat.of().formatHex(parameter.bytes()),
                "replaced", write.isReplaced(), "place", write.place());
    }

    private List<Object> tags() {
        List<Object> groups = new ArrayList<>();
        new TagPrinter(mRun, mReport.dependences()).groups().forEach((heading, rows) ->
                groups.add(JsonWriter.object("heading", heading, "rows", rows(rows))));
        return groups;
    }

    // Returns each row as [tag, frames, text].
    private static List<List<String>> rows(TagRows rows) {
        return rows.rows().stream().map(row -> List.of(row.tag(), row.frames(), row.text())).toList();
    }

    private void addResults() {
        List<Object> put = new ArrayList<>();
        for (int i = 0; i < mRun.ran().put().size(); ++i) {
            String frame = "frame " + i;
            mRun.ran().put().get(i).forEach((key, value) ->
                    put.add(List.of(frame, key, JsonWriter.line(HeldValue.json(value)))));
        }
        mJson.put("put", put);
        List<Object> descriptors = new ArrayList<>();
        for (int i = 0; i < mRun.results().size(); ++i) {
            String output = "output " + i;
            Map<String, String> after = mRun.results().get(i).fields();
            mRun.outputs().get(i).fields().forEach((field, before) ->
                    descriptors.add(List.of(output, field, before, String.valueOf(after.get(field)))));
        }
        mJson.put("descriptors", descriptors);
        mJson.put("callbacks", mRun.ran().callbacks().stream().map(callback -> {
            Map<String, Object> json = new LinkedHashMap<>();
            callback.forEach((key, value) -> json.put(key, HeldValue.json(value)));
            return json;
        }).toList());
        mJson.put("crash", mReport.crash());
        ByteArrayOutputStream printed = new ByteArrayOutputStream();
        new Summary(mReport, new PrintStream(printed, true, StandardCharsets.UTF_8), true).print();
        mJson.put("printed", printed.toString(StandardCharsets.UTF_8));
    }
}
