package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.check.RequestChecker;
import com.orlu.orlu3rdalgoservice.tool.compare.Difference;
import com.orlu.orlu3rdalgoservice.tool.compare.OutputMeasure;
import com.orlu.orlu3rdalgoservice.tool.image.ImageDifference;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.run.RequestNames;
import com.orlu.orlu3rdalgoservice.tool.run.SideBySide;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.TextTable;
import com.orlu.orlu3rdalgoservice.tool.view.ContactSheet;
import com.orlu.orlu3rdalgoservice.tool.view.Results;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.List;
import java.util.Map;
import java.util.concurrent.Callable;

import picocli.CommandLine.Command;
import picocli.CommandLine.Mixin;
import picocli.CommandLine.Option;
import picocli.CommandLine.Parameters;

@Command(customSynopsis = "./run compare [options] --lib A --lib B FOLDER|REQUEST...",
        description = {"Run requests or recordings over two libraries, each in its own process, and print a "
                + "table, worst first. A and B are algorithm libraries, or builds of the native library. The "
                + "exit status is 0 if all runs are ok and equal (with --fail-below: close enough), else 1."},
        footer = "  ./run compare --lib old.so --lib new.so --fail-below 40 samples")
final class CompareCommand implements Subcommand {
    private static final int SHOWN = 3;

    @Parameters(paramLabel = "FOLDER", arity = "1..*", hidden = true)
    private List<Path> mFiles;
    @Option(names = "--lib", paramLabel = "LIBRARY", description = "Run with this library; required twice")
    private List<Path> mLibraries = List.of();
    @Option(names = "--fail-below", paramLabel = "PSNR",
                description = "Fail only if a run fails, or an output is below PSNR dB or can't be compared")
    private Double mLeastPsnr;
    @Mixin
    private ManyOptions mMany;

    // The runs of one request: `one` with library A, `other` with library B.
    private record Pair(String name, Verdict verdict, Verdict one, Verdict other, OutputMeasure outputs,
            double oneTime, double otherTime, List<String> differences, List<Map<String, Object>> cells) {
        String status() {
            return ShotRun.status(one) + " / " + ShotRun.status(other);
        }

        boolean hasRun() {
            return one.status() == Verdict.OK && other.status() == Verdict.OK;
        }

        // Returns the lines below this table row: the first differences, or why a run failed.
        List<String> lines() {
            return hasRun() ? differences.stream().limit(SHOWN).toList()
                    : verdict.reasons().stream().filter(reason -> reason.matches("(?s)[AB]: .*")).toList();
        }

        double psnr() {
            return Double.isNaN(outputs.psnr()) ? -1 : outputs.psnr();
        }
    }

    @Override
    public int run() throws MistakeException, IOException {
        check();
        List<Path> requests = GivenPaths.requests(mFiles);
        GivenPaths.checkRead(requests);
        List<String> names = RequestNames.of(requests);
        List<Callable<Pair>> work = new ArrayList<>();
        for (int i = 0; i < requests.size(); ++i) {
            Path request = requests.get(i);
            // A recording is named after its folder.
            String name = request.endsWith("request.json") && request.getParent() != null
                    ? request.getParent().getFileName().toString() : names.get(i);
            work.add(() -> pair(request, name));
        }
        List<Pair> pairs = new ArrayList<>();
        SideBySide.run("comparing requests", mMany.jobs, work, pairs::add);
        pairs.sort(Comparator.comparing(Pair::hasRun).thenComparingDouble(Pair::psnr)
                .thenComparing(pair -> -pair.differences().size()));
        Results results = new Results("compare");
        TextTable table = new TextTable(
                List.of("request", "A / B", "PSNR", "SSIM", "A, ms", "B, ms", "differences"));
        ContactSheet sheet =
                new ContactSheet("%s (A) and %s (B)".formatted(mLibraries.get(0), mLibraries.get(1)),
                        RequestChecker.counted(pairs.size(), "request") + ", worst first",
                        List.of("A", "B", "difference"));
        for (Pair pair : pairs) {
            results.add(pair.name(), pair.verdict(), pair.oneTime() + pair.otherTime(),
                    JsonWriter.object("status", pair.status(), "psnr", pair.outputs().psnr(), "ssim",
                            pair.outputs().ssim(), "milliseconds", JsonWriter.object("a", pair.oneTime(), "b",
                                    pair.otherTime()), "differences", pair.differences()));
            table.add(List.of(pair.name(), pair.status(), pair.outputs().psnrText(),
                              pair.outputs().ssimText(), time(pair.oneTime()), time(pair.otherTime()),
                              String.valueOf(pair.differences().size())),
                    pair.lines());
            sheet.add(pair.name(), pair.verdict(), pair.lines(), pair.cells());
        }
        return mMany.finish(results, table, sheet);
    }

    private void check() throws IOException {
        GivenPaths.checkRead(mFiles);
        GivenPaths.checkRead(mLibraries);
        if (mLibraries.size() != 2) {
            throw new IllegalArgumentException("expected --lib twice, found " + mLibraries.size());
        }
        if (Files.isSameFile(mLibraries.get(0), mLibraries.get(1))) {
            throw new IllegalArgumentException("both --lib options name the same file: " + mLibraries.get(1));
        }
        if (mLeastPsnr != null && !(mLeastPsnr >= 0)) {
            throw new IllegalArgumentException("--fail-below: expected a PSNR of at least 0, found "
                    + mLeastPsnr);
        }
        mMany.check();
    }

    private Pair pair(Path request, String name) throws MistakeException, IOException {
        try (ShotRun one = ShotRun.of(request, mLibraries.get(0), List.of());
                ShotRun other = ShotRun.of(request, mLibraries.get(1), List.of())) {
            List<String> differences = one.differences(other).stream().map(Difference::text).toList();
            OutputMeasure outputs = one.outputs(other);
            List<String> reasons = new ArrayList<>();
            one.verdict().reasons().forEach(reason -> reasons.add("A: " + reason));
            other.verdict().reasons().forEach(reason -> reasons.add("B: " + reason));
            if (mLeastPsnr == null) {
                reasons.addAll(differences);
            } else if (!(outputs.psnr() >= mLeastPsnr)) {
                reasons.add(Double.isNaN(outputs.psnr()) ? "the outputs can't be compared"
                        : "PSNR: expected at least %s dB, found %.1f dB".formatted(
                                mLeastPsnr, outputs.psnr()));
            }
            return new Pair(name, reasons.isEmpty() ? Verdict.ok() : new Verdict(Verdict.FAILED, reasons),
                    one.verdict(), other.verdict(), outputs, one.milliseconds(), other.milliseconds(),
                    differences, mMany.report == null ? List.of() : cells(one, other, outputs));
        }
    }

    // Returns three cells for the output that differs most: A's image, B's image, and their difference.
    private static List<Map<String, Object>> cells(ShotRun one, ShotRun other, OutputMeasure outputs)
            throws MistakeException {
        int output = outputs.output();
        ImageDifference difference = outputs.psnr() < Double.POSITIVE_INFINITY ? OutputMeasure.difference(
                one.run().results().get(output), other.run().results().get(output)) : null;
        String name = "output " + output;
        return List.of(ContactSheet.cell(name, List.of(), one.run(), output),
                ContactSheet.cell(name, List.of(), other.run(), output),
                ContactSheet.cell(difference == null ? "" : ImageDifference.AMPLIFICATION + " times",
                        List.of("PSNR " + outputs.psnrText() + ", SSIM " + outputs.ssimText()),
                        difference == null ? null : difference.picture(),
                        Double.isNaN(outputs.psnr()) ? "not comparable" : "equal"));
    }

    private static String time(double milliseconds) {
        return "%.1f".formatted(milliseconds).replace("NaN", "-");
    }
}
