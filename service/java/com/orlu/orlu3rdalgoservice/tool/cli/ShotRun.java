package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.compare.Comparison;
import com.orlu.orlu3rdalgoservice.tool.compare.Difference;
import com.orlu.orlu3rdalgoservice.tool.compare.OutputComparison;
import com.orlu.orlu3rdalgoservice.tool.compare.OutputMeasure;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.model.RunFolder;
import com.orlu.orlu3rdalgoservice.tool.run.ChildRun;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.view.Results;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Set;

/**
 * A request that ran in its own process with one library.
 *
 * @param run    the recording; null if the request was not recorded
 * @param result the result as JSON; an object without members if the request was not recorded
 * @param child  the process; close() removes its files
 */
record ShotRun(Run run, Verdict verdict, Json result, ChildRun child)
        implements AutoCloseable {
    /** Runs a request with a library (null: the default library) and with further options of ./run. */
    static ShotRun of(Path request, Path library, List<String> options) throws MistakeException, IOException {
        // Disables the probe's copies of the images.
        ChildRun child = new ChildRun("shot", false, library).with("ORLU_PIXELS", "");
        try {
            return of(request, options, child);
        } catch (MistakeException | IOException | RuntimeException e) {
            child.remove();
            throw e;
        }
    }

    private static ShotRun of(Path request, List<String> options, ChildRun child)
            throws MistakeException, IOException {
        Path json = child.file("json");
        List<String> arguments = new ArrayList<>(options);
        arguments.addAll(List.of("--json", json.toString(), request.toString()));
        try {
            List<Path> folders = RunFolder.in(child.record(arguments));
            Json result = result(json);
            return new ShotRun(RunFolder.read(folders.get(0), request.toString()), Results.verdict(result),
                    result, child);
        } catch (IllegalStateException | MistakeException e) {
            // The run was not recorded, for example because the library is unusable.
            Json result = result(json);
            Verdict verdict = result.has("verdict") ? Results.verdict(result) : Verdict.ok();
            return new ShotRun(null, verdict.status() != Verdict.OK ? verdict
                    : new Verdict(Verdict.FAILED, List.of(e.getMessage().strip())), Json.none(), child);
        }
    }

    private static Json result(Path json) throws MistakeException {
        return Files.exists(json) ? Json.read(json).require("results").list().get(0) : Json.none();
    }

    @Override
    public void close() throws IOException {
        child.remove();
    }

    /** Returns whether both runs are recorded. */
    boolean isComparable(ShotRun other) {
        return run != null && other.run != null;
    }

    /** Returns the differences from another run; an empty list if the runs are not comparable. */
    List<Difference> differences(ShotRun other) throws MistakeException, IOException {
        return !isComparable(other) ? List.of()
                : new Comparison(run, other.run, Set.of(), 0, new OutputComparison(null, "")).differences();
    }

    /** Returns how similar the outputs of both runs are; OutputMeasure.NONE if they are not comparable. */
    OutputMeasure outputs(ShotRun other) throws MistakeException {
        return isComparable(other) ? OutputMeasure.of(run, other.run) : OutputMeasure.NONE;
    }

    /** Returns the algorithms that were passed on to the algorithm library. */
    List<String> algorithms() {
        return run == null ? List.of() : run.algorithms().stream().findFirst().orElse(List.of());
    }

    static String status(Verdict verdict) {
        return verdict.status() == Verdict.OK ? "ok" : "FAILED";
    }

    /** Returns how similar the worst output is to the clean photo; OutputMeasure.NONE if unknown. */
    OutputMeasure photo() throws MistakeException {
        OutputMeasure least = OutputMeasure.NONE;
        for (Json measure : result.has("photo") ? result.get("photo").list() : List.<Json>of()) {
            double psnr = Double.parseDouble(measure.get("psnr").text());
            if (least == OutputMeasure.NONE || psnr < least.psnr()) {
                least = new OutputMeasure(psnr, Double.parseDouble(measure.get("ssim").text()), 0);
            }
        }
        return least;
    }

    /** Returns the total milliseconds of all calls into the library; NaN if the result has no times. */
    double milliseconds() {
        return Results.milliseconds(result);
    }
}
