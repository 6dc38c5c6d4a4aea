package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.model.StageTime;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.run.NoiseMeasure;
import com.orlu.orlu3rdalgoservice.tool.tags.ValueFormatter;

import java.util.HexFormat;
import java.util.LinkedHashMap;
import java.util.Map;

/**
 * The results of a request as JSON: parameters in order, algorithm lists, values put into compositions,
 * output descriptions, times. Omits pointers and kinds of memory, so that the reports of two machines differ
 * only in times and, with --times, in page faults and allocations.
 */
public final class JsonReport {
    private JsonReport() {
    }

    /** Returns the members of a result, without its name and its verdict. */
    public static Map<String, Object> members(RunReport report) {
        Run run = report.run();
        Handover handover = run.handover();
        Map<String, Object> object = JsonWriter.object(
                "file", run.request().file().getFileName().toString(),
                "id", run.request().id(), "type", run.request().type(),
                "algorithmsBefore", run.askedAlgorithms());
        if (handover.process() != null) {
            object.put("algorithmsAfter", handover.algorithms());
        }
        object.put("parameters", handover.parameters().stream().map(JsonReport::parameter).toList());
        object.put("put", run.ran().put().stream().map(JsonReport::put).toList());
        object.put("outputsBefore", run.outputs().stream().map(ImageLayout::fields).toList());
        object.put("outputsAfter", run.results().stream().map(ImageLayout::fields).toList());
        object.put("problems", run.ran().problems());
        object.put("photo", report.images().measures().stream().map(JsonReport::measure).toList());
        if (report.dependences() != null) {
            object.put("trials", report.dependences().json());
        }
        object.put("milliseconds", run.milliseconds());
        if (!run.stageTimes().isEmpty()) {
            object.put("stages", run.stageTimes().stream().map(StageTime::json).toList());
        }
        return object;
    }

    private static Map<String, Object> measure(NoiseMeasure measure) {
        return JsonWriter.object("output", measure.output(), "samples", measure.what(), "psnrBefore",
                measure.before(), "psnr", measure.after(), "ssim", measure.ssim());
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
