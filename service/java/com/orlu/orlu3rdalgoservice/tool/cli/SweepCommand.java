package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.compare.Difference;
import com.orlu.orlu3rdalgoservice.tool.compare.OutputMeasure;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;
import com.orlu.orlu3rdalgoservice.tool.request.RequestTags;
import com.orlu.orlu3rdalgoservice.tool.run.SideBySide;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.TextTable;
import com.orlu.orlu3rdalgoservice.tool.view.ContactSheet;
import com.orlu.orlu3rdalgoservice.tool.view.Results;

import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.concurrent.Callable;
import java.util.stream.Stream;

import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

@Command(customSynopsis = "./run sweep [options] REQUEST --tag NAME=VALUES [--tag NAME=VALUES]",
        description = {"Run a request with each value of a tag, or of two tags. Print how many parameters "
                + "and results differ from the first run, and PSNR and SSIM against the clean photo (without "
                + "a photo, against the first run). VALUES are from:to:count or value,value,... "
                + "The exit status is 0 if all runs are ok, else 1."},
        footer = {"  ./run sweep samples/capture.json --tag android.jpeg.orientation=0,90,180",
            "  ./run sweep samples/night.json --tag android.sensor.sensitivity=100:3200:5"})
final class SweepCommand implements Subcommand {
    private static final int MOST_RUNS = 1000;
    private static final int SHOWN = 3;

    @Parameters(paramLabel = "REQUEST", arity = "1", hidden = true)
    private Path mRequest;
    @Option(names = "--tag", paramLabel = "NAME=VALUES", arity = "1",
                description = "Set this tag in all frames; at most two --tag")
    private List<String> mTags = List.of();
    @Mixin
    private ManyOptions mMany;

    private final Results mResults = new Results("sweep");
    private final List<Map<String, Object>> mCells = new ArrayList<>();
    private final List<Verdict> mVerdicts = new ArrayList<>();
    private ShotRun mFirst;

    @Override
    public int run() throws MistakeException, IOException {
        GivenPaths.checkRead(List.of(mRequest));
        mMany.check();
        List<Path> requests = GivenPaths.requests(List.of(mRequest));
        if (requests.size() != 1 || mTags.isEmpty() || mTags.size() > 2) {
            throw new IllegalArgumentException(
                    "expected one request and one or two --tag, found %d requests and %d --tag".formatted(
                            requests.size(), mTags.size()));
        }
        List<SweptTag> tags = mTags.stream().map(SweptTag::of).toList();
        List<List<String>> points = points(tags);
        // Reports a wrong value before the first run.
        RequestFile request = RequestFileReader.read(requests.get(0), null);
        points.forEach(point -> RequestTags.set(request, point));
        List<String> headings = new ArrayList<>(tags.stream().map(SweptTag::shortName).toList());
        headings.addAll(List.of("status", "PSNR", "SSIM", "parameters", "results", "algorithms"));
        TextTable table = new TextTable(headings);
        List<Callable<ShotRun>> work = new ArrayList<>();
        for (List<String> point : points) {
            work.add(() -> ShotRun.of(requests.get(0), null,
                    point.stream().map(assignment -> "--tag=" + assignment).toList()));
        }
        try {
            SideBySide.run("running values", mMany.jobs, work,
                    run -> take(run, points.get(mResults.size()), table));
        } finally {
            if (mFirst != null) {
                mFirst.close();
            }
        }
        return mMany.finish(mResults, table, sheet(tags));
    }

    // Returns the tags of each run, as NAME=VALUE. The last tag changes fastest.
    private static List<List<String>> points(List<SweptTag> tags) {
        List<List<String>> points = List.of(List.of());
        for (SweptTag tag : tags) {
            points = points.stream().flatMap(point -> tag.assignments().stream().map(
                    value -> Stream.concat(point.stream(), Stream.of(value)).toList())).toList();
        }
        if (points.size() > MOST_RUNS) {
            throw new IllegalArgumentException(
                    "expected at most " + MOST_RUNS + " runs, found " + points.size());
        }
        return points;
    }

    private void take(ShotRun run, List<String> point, TextTable table) throws MistakeException, IOException {
        boolean isFirst = mFirst == null;
        mFirst = isFirst ? run : mFirst;
        List<Difference> all = mFirst.differences(run);
        List<String> parameters = all.stream().filter(each -> each.canComeFromTags()
                && !each.parameter().equals(Dependences.ALGORITHMS))
                .map(each -> each.text().replaceFirst("^parameter \\d+ ", "")).toList();
        List<String> results = all.stream().map(Difference::text).filter(text -> text.startsWith("frame "))
                .toList();
        boolean hasPhoto = mFirst.photo() != OutputMeasure.NONE;
        OutputMeasure measure = hasPhoto ? run.photo() : mFirst.outputs(run);
        String algorithms = run.run() == null || run.run().algorithms().isEmpty() ? "-"
                : String.join(", ", run.algorithms());
        Map<String, Object> tags = JsonWriter.object();
        point.forEach(assignment -> tags.put(assignment.replaceFirst("(?s)=.*", ""), value(assignment)));
        List<String> cells = new ArrayList<>(point.stream().map(SweepCommand::value).toList());
        cells.addAll(List.of(ShotRun.status(run.verdict()), measure.psnrText(), measure.ssimText(),
                String.valueOf(parameters.size()), String.valueOf(results.size()), algorithms));
        table.add(cells, Stream.of(run.verdict().reasons(), parameters, results)
                .flatMap(lines -> shortened(lines).stream()).toList());
        String name = String.join(" ", point);
        mResults.add(name, run.verdict(), run.milliseconds(),
                JsonWriter.object("tags", tags, "psnr", measure.psnr(), "ssim", measure.ssim(), "reference",
                        hasPhoto ? "photo" : "first", "algorithmsAfter", run.algorithms(),
                        "differences", all.stream().map(Difference::text).toList()));
        mVerdicts.add(run.verdict());
        if (mMany.report != null) {
            mCells.add(ContactSheet.cell(point.size() == 1 ? name : "", List.of("PSNR " + measure.psnrText()
                    + ", SSIM " + measure.ssimText(), algorithms), run.run(), 0));
        }
        if (!isFirst) {
            run.close();
        }
    }

    private static String value(String assignment) {
        return assignment.substring(assignment.indexOf('=') + 1);
    }

    private static List<String> shortened(List<String> lines) {
        return lines.size() <= SHOWN ? lines : Stream.concat(lines.stream().limit(SHOWN),
                Stream.of("and " + (lines.size() - SHOWN) + " more")).toList();
    }

    private ContactSheet sheet(List<SweptTag> tags) throws MistakeException {
        SweptTag first = tags.get(0);
        List<String> columns = tags.size() == 1 ? List.of() : tags.get(1).assignments();
        ContactSheet sheet =
                new ContactSheet(mRequest.getFileName() + " with " + mVerdicts.size() + " runs",
                        "PSNR and SSIM against the "
                                + (mFirst.photo() == OutputMeasure.NONE ? "first run" : "clean photo"),
                        columns);
        int width = columns.isEmpty() ? mCells.size() : columns.size();
        for (int i = 0; i < mCells.size(); i += width) {
            Verdict verdict = mVerdicts.subList(i, i + width).stream()
                    .filter(each -> each.status() != Verdict.OK).findFirst().orElse(Verdict.ok());
            sheet.add(columns.isEmpty() ? first.name() : first.assignments().get(i / width),
                    verdict, verdict.reasons(), mCells.subList(i, i + width));
        }
        return sheet;
    }
}
