package com.orlu.orlu3rdalgoservice.tool.view;

import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonObject;

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
import com.orlu.orlu3rdalgoservice.tool.model.RequestReport;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.tags.HeldValue;

import java.io.ByteArrayOutputStream;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.HexFormat;
import java.util.List;
import java.util.Map;

/** All that a page shows of one request, but the timeline and the log, as JSON. */
final class PageData {
    private final RequestReport mReport;
    private final Exhibits mExhibits;
    private final SourceLines mSource;
    private final JsonObject mJson = new JsonObject();

    /** The exhibits are null when the process ended before they were there. */
    PageData(RequestReport report, Exhibits exhibits, SourceLines source) {
        mReport = report;
        mExhibits = exhibits;
        mSource = source;
    }

    JsonObject json() {
        addRequest();
        addAlgorithms();
        addFindings();
        if (mExhibits != null) {
            mJson.add("images", mExhibits.json());
        }
        if (mReport.verdict.status() != Verdict.UNUSABLE) {
            mSource.learn(mReport.events);
            addParameters();
            addTags();
        }
        addResults();
        return mJson;
    }

    private void addRequest() {
        RequestFile request = mReport.request;
        mJson.addProperty("about", request.about());
        mJson.addProperty("file", request.file().toString());
        mJson.addProperty("id", request.id());
        mJson.addProperty("type", request.type());
        mJson.addProperty("client", request.clientId());
        mJson.addProperty("fullAsync", request.fullAsync());
        JsonObject verdict = new JsonObject();
        verdict.addProperty("ok", mReport.verdict.status() == Verdict.OK);
        verdict.addProperty("line", mReport.verdict.line());
        verdict.add("reasons", strings(mReport.verdict.reasons()));
        mJson.add("verdict", verdict);
        JsonObject times = new JsonObject();
        mReport.stopwatch.milliseconds().forEach(times::addProperty);
        mJson.add("milliseconds", times);
    }

    private void addAlgorithms() {
        JsonObject algorithms = new JsonObject();
        algorithms.add("asked", strings(mReport.askedAlgorithms()));
        Handover handover = mReport.handover();
        if (handover.process() != null) {
            algorithms.add("handedOn", strings(handover.algorithms()));
        }
        AlgorithmPass pass = mReport.pass;
        if (pass != null) {
            algorithms.add("ran", strings(pass.ran()));
            algorithms.addProperty("milliseconds", pass.milliseconds());
            JsonArray frames = new JsonArray();
            for (AlgorithmPass.Frame frame : pass.frames()) {
                JsonObject json = new JsonObject();
                json.addProperty("kept", frame.kept());
                if (!Double.isNaN(frame.sharpness())) {
                    json.addProperty("sharpness", frame.sharpness());
                }
                frames.add(json);
            }
            algorithms.add("frames", frames);
        }
        mJson.add("algorithms", algorithms);
    }

    private void addFindings() {
        List<Finding> findings = new ArrayList<>(VerdictFindings.of(mReport.verdict));
        if (mExhibits != null) {
            findings.addAll(new ImageFindings(mExhibits, mReport.handover().process() != null).all());
        }
        findings.sort(Comparator.comparing(finding -> !finding.isSure()));
        JsonArray array = new JsonArray();
        findings.forEach(finding -> array.add(finding.json()));
        mJson.add("findings", array);
    }

    private void addParameters() {
        Explanations explanations = new Explanations(mReport, mSource);
        JsonArray writes = new JsonArray();
        for (Explanations.Write write : explanations.writes()) {
            Parameter parameter = write.parameter();
            JsonObject json = new JsonObject();
            json.addProperty("section", Handover.shortName(parameter.section()));
            json.addProperty("key", parameter.key());
            json.addProperty("name", parameter.fullName());
            json.addProperty("type", parameter.type());
            json.addProperty("value", parameter.text());
            json.addProperty("bytes", parameter.bytes().length);
            json.addProperty("hex", HexFormat.of().formatHex(parameter.bytes()));
            json.addProperty("replaced", write.isReplaced());
            json.addProperty("place", write.place());
            writes.add(json);
        }
        mJson.add("parameters", writes);
        JsonObject explained = new JsonObject();
        for (String name : explanations.names()) {
            JsonObject json = new JsonObject();
            json.addProperty("unsteady", explanations.isUnsteady(name));
            json.add("tags", rows(explanations.tags(name)));
            explained.add(name, json);
        }
        mJson.add("explained", explained);
        mJson.add("generalTags", rows(explanations.generalTags()));
        mJson.addProperty("explanationProblem", explanations.problem());
        mJson.addProperty("explanationEffort", explanations.effort());
    }

    private void addTags() {
        JsonArray groups = new JsonArray();
        new TagPrinter(mReport).groups().forEach((heading, rows) -> {
            JsonObject group = new JsonObject();
            group.addProperty("heading", heading);
            group.add("rows", rows(rows));
            groups.add(group);
        });
        mJson.add("tags", groups);
    }

    // Each as [tag, frames, what is said].
    private static JsonArray rows(TagRows rows) {
        JsonArray array = new JsonArray();
        rows.rows().forEach(row -> array.add(strings(List.of(row.tag(), row.frames(), row.text()))));
        return array;
    }

    private void addResults() {
        JsonArray put = new JsonArray();
        for (int i = 0; i < mReport.put.size(); ++i) {
            for (Map.Entry<String, Object> value : mReport.put.get(i).entrySet()) {
                put.add(strings(List.of("frame " + i, value.getKey(),
                        HeldValue.json(value.getValue()).toString())));
            }
        }
        mJson.add("put", put);
        JsonArray descriptors = new JsonArray();
        for (int i = 0; i < mReport.outputsAfter.size(); ++i) {
            int output = i;
            Map<String, String> after = mReport.outputsAfter.get(i).fields();
            mReport.outputsBefore.get(i).fields().forEach((field, before) -> descriptors.add(
                    strings(List.of("output " + output, field, before, String.valueOf(after.get(field))))));
        }
        mJson.add("descriptors", descriptors);
        JsonArray callbacks = new JsonArray();
        for (Map<String, Object> callback : mReport.callbacks) {
            JsonObject json = new JsonObject();
            callback.forEach((key, value) -> json.add(key, HeldValue.json(value)));
            callbacks.add(json);
        }
        mJson.add("callbacks", callbacks);
        ByteArrayOutputStream printed = new ByteArrayOutputStream();
        new Summary(mReport, new PrintStream(printed, true, StandardCharsets.UTF_8), true).print();
        mJson.addProperty("crash", mReport.crash);
        mJson.addProperty("printed", printed.toString(StandardCharsets.UTF_8));
    }

    private static JsonElement strings(List<String> texts) {
        JsonArray array = new JsonArray();
        texts.forEach(array::add);
        return array;
    }
}
