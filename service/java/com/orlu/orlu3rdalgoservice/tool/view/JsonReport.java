package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.json.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterFormatter;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterType;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterTypes;
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
        Map<String, Object> object = new LinkedHashMap<>();
        object.put("file", report.run().request().file().getFileName().toString());
        object.put("name", report.run().name());
        object.put("id", report.run().request().id());
        object.put("type", report.run().request().type());
        object.put("algorithmsBefore", strings(report.run().askedAlgorithms()));
        Handover handover = report.run().handover();
        if (handover.process() != null) {
            object.put("algorithmsAfter", strings(handover.algorithms()));
        }
        object.put("parameters", parameters(handover.parameters()));
        object.put("put", put(report.run().put()));
        object.put("outputsBefore", outputs(report.run().outputsBefore()));
        object.put("outputsAfter", outputs(report.run().outputsAfter()));
        object.put("problems", strings(report.run().problems()));
        object.put("verdict", verdict(report.verdict()));
        if (report.dependences() != null) {
            object.put("trials", report.dependences().json());
        }
        Map<String, Object> times = new LinkedHashMap<>();
        report.run().milliseconds().forEach(times::put);
        object.put("milliseconds", times);
        mReports.add(object);
    }

    /** The verdict of a run that ended before its reports were there. */
    public void add(Verdict verdict) {
        Map<String, Object> object = new LinkedHashMap<>();
        object.put("verdict", verdict(verdict));
        mReports.add(object);
    }

    public void write(Path file) throws IOException {
        Files.writeString(file, JsonWriter.pretty(mReports));
    }

    private static Map<String, Object> verdict(Verdict verdict) {
        Map<String, Object> object = new LinkedHashMap<>();
        object.put("ok", verdict.status() == Verdict.OK);
        object.put("status", verdict.status());
        object.put("reasons", strings(verdict.reasons()));
        return object;
    }

    private static List<Object> strings(List<String> texts) {
        List<Object> array = new ArrayList<>();
        texts.forEach(array::add);
        return array;
    }

    private static List<Object> parameters(List<Parameter> parameters) {
        List<Object> array = new ArrayList<>();
        for (Parameter parameter : parameters) {
            Map<String, Object> object = new LinkedHashMap<>();
            object.put("section", parameter.section());
            object.put("key", parameter.key());
            ParameterType type = ParameterTypes.of(parameter.section(), parameter.key());
            object.put("type", type.text());
            object.put("value", ParameterFormatter.json(type, parameter.bytes()));
            object.put("hex", HexFormat.of().formatHex(parameter.bytes()));
            array.add(object);
        }
        return array;
    }

    private static List<Object> put(List<Map<String, Object>> compositions) {
        List<Object> array = new ArrayList<>();
        for (Map<String, Object> composition : compositions) {
            Map<String, Object> object = new LinkedHashMap<>();
            composition.forEach((key, value) -> object.put(key, ValueFormatter.json(value)));
            array.add(object);
        }
        return array;
    }

    private static List<Object> outputs(List<ImageLayout> outputs) {
        List<Object> array = new ArrayList<>();
        for (ImageLayout output : outputs) {
            Map<String, Object> object = new LinkedHashMap<>();
            output.fields().forEach(object::put);
            array.add(object);
        }
        return array;
    }
}
