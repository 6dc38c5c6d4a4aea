package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.model.RunFolder;
import com.orlu.orlu3rdalgoservice.tool.view.Results;

import java.io.IOException;
import java.io.Reader;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.regex.Pattern;
import java.util.stream.Stream;

/**
 * Checks the paths of a command line before anything runs, because a run may take long. Also protects request
 * files: if the user forgot the name of the result file, as in "--json samples/night.json", the result would
 * overwrite the request.
 */
final class GivenPaths {
    /** The help's definition of FOLDER. */
    static final String RECORDINGS = "FOLDER is a recording, or a folder of recordings (docs/recording.md).";

    private static final Pattern REQUEST = Pattern.compile("\"request\"\\s*:\\s*\\{");
    private static final int HEAD = 64 << 10;

    private final Map<Path, String> mFiles = new HashMap<>();

    /** Throws an IllegalArgumentException for the first missing path. */
    static void checkRead(List<Path> paths) {
        for (Path path : paths) {
            if (!Files.exists(path)) {
                throw new IllegalArgumentException("no such file: " + path);
            }
        }
    }

    /**
     * Returns the request files of a command line: for a file, the file; for a recording, its request; for
     * another folder, its *.json files and the requests of its recordings, sorted by name. Throws an
     * IllegalArgumentException if such a folder contains neither.
     */
    static List<Path> requests(List<Path> given) {
        List<Path> requests = new ArrayList<>();
        for (Path path : given) {
            if (!Files.isDirectory(path)) {
                requests.add(path);
                continue;
            }
            List<Path> inside = RunFolder.isRun(path) ? List.of(path) : files(path);
            int before = requests.size();
            for (Path file : inside) {
                if (RunFolder.isRun(file)) {
                    requests.add(file.resolve(RunFolder.REQUEST));
                } else if (Files.isRegularFile(file) && file.getFileName().toString().endsWith(".json")) {
                    requests.add(file);
                }
            }
            if (requests.size() == before) {
                throw new IllegalArgumentException(path + ": expected request files (*.json) or "
                        + "recordings, found neither");
            }
        }
        return requests;
    }

    private static List<Path> files(Path folder) {
        try (Stream<Path> files = Files.list(folder)) {
            return files.filter(file -> !file.getFileName().toString().startsWith(".")).sorted().toList();
        } catch (IOException e) {
            throw new IllegalArgumentException("can't read the folder " + folder, e);
        }
    }

    /**
     * Adds an option's file; null adds nothing. Throws an IllegalArgumentException if the file is a folder,
     * a request or another option's file, or if its folder is missing.
     */
    GivenPaths file(String option, Path file) {
        if (file == null) {
            return this;
        }
        Path whole = file.toAbsolutePath().normalize();
        String other = mFiles.put(whole, option);
        if (other != null) {
            throw new IllegalArgumentException(other + " and " + option + " name the same file: " + file);
        }
        if (file.equals(Results.STANDARD_OUTPUT)) {
            return this;
        }
        if (Files.isDirectory(file)) {
            throw new IllegalArgumentException(option + ": expected a file, found a folder: " + file);
        }
        if (!Files.isDirectory(whole.getParent())) {
            throw new IllegalArgumentException(option + ": no such folder: " + file.getParent());
        }
        if (Files.isRegularFile(file) && isRequest(file)) {
            throw new IllegalArgumentException(option + " would overwrite a request file: " + file);
        }
        return this;
    }

    /** Throws an IllegalArgumentException if the folder is a file. The folder may be null or missing. */
    GivenPaths folder(String option, Path folder) {
        if (folder != null && Files.exists(folder) && !Files.isDirectory(folder)) {
            throw new IllegalArgumentException(option + ": expected a folder, found a file: " + folder);
        }
        return this;
    }

    private static boolean isRequest(Path file) {
        char[] head = new char[HEAD];
        // This charset decodes any bytes, even those of a binary file.
        try (Reader reader = Files.newBufferedReader(file, StandardCharsets.ISO_8859_1)) {
            int length = reader.read(head);
            return length > 0 && REQUEST.matcher(new String(head, 0, length)).find();
        } catch (IOException e) {
            return false;
        }
    }
}
