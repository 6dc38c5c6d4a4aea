package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.json.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.tags.ValueFormatter;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HexFormat;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * Writes what happened to requests as JSON: parameters in their order, algorithm lists, values put, output
 * descriptions, the verdict, times. Pointers and memory stay out of it. All but the times, also those in a
 * verdict's words, is the same on every machine.
 */
public final class JsonReport {
    private final List<Object> mReports = new ArrayList<>();

    public void add(RunReport report) {
        Run run = report.run();
        Handover handover = run.handover();
        Map<String, Object> object = JsonWriter.object(
                "file", run.request().file().getFileName().toString(), "name", run.name(),
                "id", run.request().id(), "type", run.request().type(),
                "algorithmsBefore", run.askedAlgorithms());
        if (handover.process() != null) {
            object.put("algorithmsAfter", handover.algorithms());
        }
        object.put("parameters", handover.parameters().stream().map(JsonReport::parameter).toList());
        object.put("put", run.put().stream().map(JsonReport::put).toList());
        object.put("outputsBefore", run.outputsBefore().stream().map(ImageLayout::fields).toList());
        object.put("outputsAfter", run.results().stream().map(ImageLayout::fields).toList());
        object.put("problems", run.problems());
        object.put("verdict", verdict(report.verdict()));
        if (report.dependences() != null) {
            object.put("trials", report.dependences().json());
        }
        object.put("milliseconds", run.milliseconds());
        mReports.add(object);
    }

    /** The verdict of a run that ended before its reports were there. */
    public void add(Verdict verdict) {
        mReports.add(JsonWriter.object("verdict", verdict(verdict)));
    }

    public void write(Path file) throws IOException {
        Files.writeString(file, JsonWriter.pretty(mReports));
    }

    private static Map<String, Object> verdict(Verdict verdict) {
        return JsonWriter.object("ok", verdict.status() == Verdict.OK, "status", verdict.status(),
                "reasons", verdict.reasons());
    }

    private static Map<String, Object> parameter(Parameter parameter) {
        return JsonWriter.object("section", parameter.section(), "key", parameter.key(),
                "type", parameter.type(), "value", parameter.json(),
                "hex", HexFormat.of().formatHex(parameter.bytes()));
    }

    private static Map<String, Object> put(Map<String, Object> composition) {
        Map<String, Object> object = new LinkedHashMap<>();
        composition.forEach((key, value) -> object.put(key, ValueFormatter.json(value)));
        return object;
    }
}
