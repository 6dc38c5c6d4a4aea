package com.orlu.orlu3rdalgoservice.tool.view;

import com.google.gson.Gson;
import com.google.gson.GsonBuilder;
import com.google.gson.JsonArray;
import com.google.gson.JsonObject;

import com.orlu.orlu3rdalgoservice.tool.image.ImageState;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.model.RequestReport;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterFormatter;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterType;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterTypes;
import com.orlu.orlu3rdalgoservice.tool.tags.ValueFormatter;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.HexFormat;
import java.util.List;
import java.util.Map;

/**
 * Writes what happened to requests as JSON: parameters in their order, algorithm lists, values put, output
 * descriptions, the verdict, times. Pointers and memory stay out of it. All but the times, also those in a
 * verdict's words, is the same on every machine.
 */
public final class JsonReport {
    private final JsonArray mReports = new JsonArray();

    public void add(RequestReport report) {
        JsonObject object = new JsonObject();
        object.addProperty("file", report.request.file().getFileName().toString());
        object.addProperty("name", report.name);
        object.addProperty("id", report.request.id());
        object.addProperty("type", report.request.type());
        object.add("algorithmsBefore", strings(report.askedAlgorithms()));
        Handover handover = report.handover();
        if (handover.process() != null) {
            object.add("algorithmsAfter", strings(handover.algorithms()));
        }
        object.add("parameters", parameters(handover.parameters()));
        object.add("put", put(report.put));
        object.add("outputsBefore", outputs(report.outputsBefore));
        object.add("outputsAfter", outputs(report.outputsAfter));
        object.add("problems", strings(report.problems));
        object.add("verdict", verdict(report.verdict));
        if (report.dependences != null) {
            object.add("trials", report.dependences.json());
        }
        JsonObject times = new JsonObject();
        report.stopwatch.milliseconds().forEach(times::addProperty);
        object.add("milliseconds", times);
        mReports.add(object);
    }

    /** The verdict of a run that ended before its reports were there. */
    public void add(Verdict verdict) {
        JsonObject object = new JsonObject();
        object.add("verdict", verdict(verdict));
        mReports.add(object);
    }

    public void write(Path file) throws IOException {
        Gson gson = new GsonBuilder().setPrettyPrinting().disableHtmlEscaping().create();
        Files.writeString(file, gson.toJson(mReports) + "\n");
    }

    private static JsonObject verdict(Verdict verdict) {
        JsonObject object = new JsonObject();
        object.addProperty("ok", verdict.status() == Verdict.OK);
        object.addProperty("status", verdict.status());
        object.add("reasons", strings(verdict.reasons()));
        return object;
    }

    private static JsonArray strings(List<String> texts) {
        JsonArray array = new JsonArray();
        texts.forEach(array::add);
        return array;
    }

    private static JsonArray parameters(List<Parameter> parameters) {
        JsonArray array = new JsonArray();
        for (Parameter parameter : parameters) {
            JsonObject object = new JsonObject();
            object.addProperty("section", parameter.section());
            object.addProperty("key", parameter.key());
            ParameterType type = ParameterTypes.of(parameter.section(), parameter.key());
            object.addProperty("type", type.text());
            object.add("value", ParameterFormatter.json(type, parameter.bytes()));
            object.addProperty("hex", HexFormat.of().formatHex(parameter.bytes()));
            array.add(object);
        }
        return array;
    }

    private static JsonArray put(List<Map<String, Object>> compositions) {
        JsonArray array = new JsonArray();
        for (Map<String, Object> composition : compositions) {
            JsonObject object = new JsonObject();
            composition.forEach((key, value) -> object.add(key, ValueFormatter.json(value)));
            array.add(object);
        }
        return array;
    }

    private static JsonArray outputs(List<ImageState> outputs) {
        JsonArray array = new JsonArray();
        for (ImageState output : outputs) {
            JsonObject object = new JsonObject();
            output.fields().forEach(object::addProperty);
            array.add(object);
        }
        return array;
    }
}
