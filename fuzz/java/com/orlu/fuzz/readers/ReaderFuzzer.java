package com.orlu.fuzz.readers;

import com.orlu.orlu3rdalgoservice.tool.cli.Main;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;

import java.io.IOException;
import java.nio.file.FileVisitResult;
import java.nio.file.Files;
import java.nio.file.LinkOption;
import java.nio.file.Path;
import java.nio.file.SimpleFileVisitor;
import java.nio.file.attribute.BasicFileAttributes;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Random;
import java.util.TreeMap;
import java.util.stream.Stream;

/**
 * Runs the command in this VM on mutants of examples. Arguments: SEEDS WORK SECONDS SEED [FORM...]. A form is
 * a kind of input, such as a recording. The files of an example are in SEEDS/form/example. Mutant i depends
 * only on SEED + i, the form's examples and WORK. The files of the first mutant with each problem are stored
 * in WORK/findings.
 */
public final class ReaderFuzzer {
    private static final int SHOWN = 1500;
    private static final List<String> IMPORTS = List.of("dump", "suite", "photo");

    private final Path mSeeds;
    private final Path mWork;
    private final Path mBox;
    private final long mSeed;
    private final Canary mCanary;
    private final Map<String, Integer> mMutants = new TreeMap<>();
    private final Map<String, Integer> mTaken = new TreeMap<>();
    private final Map<String, Integer> mFindings = new LinkedHashMap<>();

    private ReaderFuzzer(Path seeds, Path work, long seed) throws IOException {
        mSeeds = seeds.toAbsolutePath();
        mWork = work.toAbsolutePath();
        mBox = mWork.resolve("around/box");
        mSeed = seed;
        Files.createDirectories(mBox);
        Files.createDirectories(mWork.resolve("findings"));
        mCanary = new Canary(mWork.resolve("around"), mBox);
    }

    /** Exits with 1 if anything was found or a planted fault was missed. */
    public static void main(String[] arguments) throws IOException {
        Locale.setDefault(Locale.ROOT);
        ReaderFuzzer fuzzer =
                new ReaderFuzzer(Path.of(arguments[0]), Path.of(arguments[1]), Long.parseLong(arguments[3]));
        List<String> forms = List.of(arguments).subList(4, arguments.length);
        boolean isFine = fuzzer.findsPlanted();
        if (isFine) {
            fuzzer.run(Integer.parseInt(arguments[2]), forms.isEmpty() ? names(fuzzer.mSeeds) : forms);
            isFine = fuzzer.report();
        }
        // halt() runs no shutdown hooks: threads of hanging commands may still be running.
        Runtime.getRuntime().halt(isFine ? 0 : 1);
    }

    private boolean findsPlanted() throws IOException {
        Path in = mBox.resolve("in");
        remove(in);
        Files.createSymbolicLink(in.resolve("link"), mCanary.file());
        PlantedFaults faults = new PlantedFaults(in, mBox.resolve("out"), mCanary);
        List<String> missed = faults.missed();
        missed.forEach(fault -> System.out.println("planted fault not found: " + fault));
        if (missed.isEmpty()) {
            System.out.println("all " + faults.count() + " planted faults found");
        }
        return missed.isEmpty();
    }

    private static List<String> names(Path folder) throws IOException {
        try (Stream<Path> all = Files.list(folder)) {
            return all.map(file -> file.getFileName().toString()).sorted().toList();
        }
    }

    // Runs every example unchanged, then mutants. Each form's mutants get the same number of seconds.
    private void run(int seconds, List<String> forms) throws IOException {
        for (String form : forms) {
            Path folder = mSeeds.resolve(form);
            List<Path> examples = names(folder).stream().map(folder::resolve).toList();
            for (Path example : examples) {
                attempt(form, example, -1);
            }
            long end = System.nanoTime() + seconds * 1_000_000_000L / forms.size();
            for (int i = 0; System.nanoTime() < end; ++i) {
                attempt(form, examples.get(new Random(mSeed + i).nextInt(examples.size())), i);
            }
        }
    }

    private void attempt(String form, Path example, int number) throws IOException {
        remove(mBox);
        Path in = mBox.resolve("in");
        copy(example, in);
        for (String link : List.of("link", "suite.raw", "suite.yuv", "suite.dng")) {
            if (!Files.exists(in.resolve(link), LinkOption.NOFOLLOW_LINKS)) {
                Files.createSymbolicLink(in.resolve(link), mCanary.file());
            }
        }
        if (number >= 0) {
            // The mutator may insert the name of a file inside or outside the folder, or of an endless file.
            Random chance = new Random(~(mSeed + number));
            new Mutator(chance, List.of("\"link\"", "\"../../canary\"", "\"/dev/zero\"", "\"..\"",
                    "\"" + mCanary.file() + "\"", "\"request.json\"", "\"input0.bin\"")).mutate(in);
        }
        mMutants.merge(form, 1, Integer::sum);
        boolean isTaken = true;
        for (List<String> arguments : commands(form, example, in)) {
            mCanary.arm(in);
            Outcome outcome = Outcome.of(() -> Main.status(arguments.toArray(new String[0])),
                    Outcome.Time.USUAL);
            isTaken &= outcome.status() != Verdict.REFUSED;
            String problem = outcome.problem();
            if (problem.isEmpty()) {
                problem = mCanary.problem(in, mBox.resolve("out"), outcome.printed(), !isClosed(form));
            }
            if (!problem.isEmpty()) {
                keep(arguments.get(0) + " of a " + form + ": " + problem, form, example, number, arguments,
                        outcome);
            }
        }
        if (isTaken) {
            mTaken.merge(form, 1, Integer::sum);
        }
    }

    // Returns whether a form may read only files in its folder. A request file may name files anywhere.
    private static boolean isClosed(String form) {
        return form.equals("recording") || IMPORTS.contains(form);
    }

    // Returns the command lines that read this folder.
    private List<List<String>> commands(String form, Path example, Path folder) throws IOException {
        String request = folder.resolve("request.json").toString();
        String in = folder.toString();
        String out = mBox.resolve("out").toString();
        if (IMPORTS.contains(form)) {
            String made = out + "/request.json";
            return List.of(imported(folder, made), List.of("--check", made));
        }
        return switch (form) {
            case "request" -> List.of(List.of("--check", request));
            case "picture" -> List.of(List.of("--check", request), List.of("--out", out, request));
            default -> List.of(List.of("info", in), List.of("info", "--private", in),
                    List.of("--check", request),
                    List.of("trim", in, "--out", out + "/whole"),
                    List.of("trim", in, "--out", out + "/small", "--crop", "16,8"),
                    List.of("trim", in, "--out", out + "/plain", "--private"),
                    List.of("diff", "--no-explain", in, example.toString()), List.of("--out", out, request));
        };
    }

    private static List<String> imported(Path folder, String out) throws IOException {
        List<String> arguments = new ArrayList<>(List.of("import", "--out", out));
        Mutator.files(folder).forEach(file -> arguments.add(file.toString()));
        return arguments;
    }

    private void keep(String problem, String form, Path example, int number, List<String> arguments,
            Outcome outcome) throws IOException {
        if (mFindings.merge(problem, 1, Integer::sum) > 1) {
            return;
        }
        Path kept = mWork.resolve("findings/" + form + "-" + example.getFileName() + "-" + number);
        if (!Files.exists(kept)) {
            copy(mBox.resolve("in"), kept);
        }
        String printed = outcome.printed();
        String shown = printed.substring(0, Math.min(SHOWN, printed.length())).replaceAll("[^\\n -~]", "?");
        System.out.println("FOUND " + problem + "\n  " + String.join(" ", arguments) + "\n  files: "
                + kept + "\n  " + shown);
    }

    private boolean report() {
        mMutants.forEach((form, count) -> System.out.println(form + ": " + count + " inputs, "
                + mTaken.getOrDefault(form, 0) + " of them accepted"));
        System.out.println(mFindings.size() + " findings");
        mFindings.forEach((problem, count) -> System.out.println("  " + count + " x " + problem));
        return mFindings.isEmpty();
    }

    private static void copy(Path from, Path to) throws IOException {
        try (Stream<Path> files = Files.walk(from)) {
            for (Path file : files.toList()) {
                Path copy = to.resolve(from.relativize(file).toString());
                if (Files.isDirectory(file, LinkOption.NOFOLLOW_LINKS)) {
                    Files.createDirectories(copy);
                } else {
                    Files.copy(file, copy, LinkOption.NOFOLLOW_LINKS);
                }
            }
        }
    }

    /** Empties a folder or creates it. */
    static void remove(Path folder) throws IOException {
        if (!Files.exists(folder)) {
            Files.createDirectories(folder);
            return;
        }
        Files.walkFileTree(folder, new SimpleFileVisitor<>() {
            @Override
            public FileVisitResult visitFile(Path file, BasicFileAttributes attributes) throws IOException {
                Files.delete(file);
                return FileVisitResult.CONTINUE;
            }

            @Override
            public FileVisitResult postVisitDirectory(Path visited, IOException e) throws IOException {
                Files.delete(visited);
                return FileVisitResult.CONTINUE;
            }
        });
        Files.createDirectories(folder);
    }
}
