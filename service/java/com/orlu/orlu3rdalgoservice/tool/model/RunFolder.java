package com.orlu.orlu3rdalgoservice.tool.model;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.request.RecordedFile;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.IOException;
import java.io.InputStream;
import java.nio.ByteBuffer;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Stream;

/**
 * The folder of a run: request.json, input images, events.jsonl, output images, outcome.json. A process that
 * died during its run leaves no outcome. The files are untrusted input.
 */
public final class RunFolder {
    public static final String REQUEST = "request.json";
    public static final String OUTCOME = "outcome.json";
    public static final String EVENTS = "events.jsonl";
    /** A file that only recordings of version 1 contain. */
    private static final String OLD = "recording";
    private static final int MOST_EVENT_BYTES = 1 << 25;

    private RunFolder() {
    }

    /** Whether this is the folder of a run, even of a damaged one. */
    public static boolean isRun(Path folder) {
        return Stream.of(REQUEST, OUTCOME, OLD).anyMatch(name -> RecordedFile.isRegular(folder
                .resolve(name)));
    }

    /** Returns the folder itself if it is a run, else all runs in it, sorted by name. */
    public static List<Path> in(Path folder) throws MistakeException, IOException {
        if (isRun(folder)) {
            return List.of(folder);
        }
        if (!Files.isDirectory(folder)) {
            throw new MistakeException(folder.toString(), "", "no such folder");
        }
        try (Stream<Path> inside = Files.list(folder)) {
            List<Path> found = inside.filter(RunFolder::isRun).sorted().toList();
            if (found.isEmpty()) {
                throw new MistakeException(folder.toString(), "", "not a recording; missing " + REQUEST);
            }
            return found;
        }
    }

    /**
     * Returns the folder itself if it is a run, else the only run in it. Throws an IllegalArgumentException
     * if there are several runs.
     */
    public static Path only(Path folder) throws MistakeException, IOException {
        List<Path> folders = in(folder);
        if (folders.size() != 1) {
            throw new IllegalArgumentException(
                    folder + ": expected one recording, found " + folders.size());
        }
        return folders.get(0);
    }

    /** Reads a run and gives it a name for display. Throws MistakeException if its request can't be read. */
    public static Run read(Path folder, String name) throws MistakeException {
        return read(folder, name, folder.resolve(REQUEST));
    }

    /** Reads a run. Messages after this call name `shownFile` instead of the folder's request file. */
    public static Run read(Path folder, String name, Path shownFile) throws MistakeException {
        Path file = folder.resolve(REQUEST);
        Mistakes mistakes = new Mistakes(file.toString());
        String problem = "";
        Json outcome = Json.none();
        if (RecordedFile.isRegular(folder.resolve(OUTCOME))) {
            try {
                outcome = Json.read(folder.resolve(OUTCOME));
                outcome.members();
            } catch (MistakeException e) {
                outcome = Json.none();
                problem = e.getMessage();
            }
            if (outcome.has("failed")) {
                problem = "recording failed: " + outcome.get("failed").text();
            }
        } else {
            problem = "the process ended";
        }
        if (!RecordedFile.isRegular(file)) {
            throw new MistakeException(file.toString(), "", RecordedFile.isRegular(folder.resolve(OLD))
                    ? "no such file; recordings of version 1 are no longer read"
                    : "no such regular file" + (problem.isEmpty() ? "" : ": " + problem));
        }
        RequestFile request = RequestFileReader.read(file, null, mistakes);
        mistakes.throwFirst();
        Json root = Json.read(file);
        if (!root.has("recording")) {
            throw root.error("missing field recording; the file is not from a recorder");
        }
        // A trimmed run is complete even without an outcome.
        boolean isWhole = root.has("trimmed") && !Files.exists(folder.resolve(OUTCOME));
        return Run.of(name, folder, request.shownAs(shownFile), root, outcome, isWhole ? "" : problem,
                mistakes.lines());
    }

    /**
     * Checks the events file that the outcome names. Returns the problem as text; "" if the file is complete
     * or the outcome names no file.
     */
    static String eventsProblem(Path folder, Json outcome) {
        try {
            Json events = outcome.get("events");
            if (events != null && events.has("file")) {
                RecordedFile.named(folder, events.get("file"),
                        events.require("size").integer(0, MOST_EVENT_BYTES), events.require("crc").string())
                        .bytes();
            }
            return "";
        } catch (MistakeException e) {
            return e.getMessage();
        }
    }

    /**
     * Reads an events file that nobody writes any more. Stops at the first cut or damaged line. Returns no
     * events if the file does not exist.
     */
    public static RecordedEvents events(Path file) throws MistakeException {
        RecordedEvents events = new RecordedEvents();
        if (!RecordedFile.isRegular(file)) {
            return events;
        }
        List<Json> lines = new ArrayList<>();
        String text = text(file);
        int number = 0;
        for (String line : text.substring(0, text.lastIndexOf('\n') + 1).split("\n")) {
            Json event = event(file, ++number, line);
            if (event == null) {
                break;
            }
            lines.add(event);
        }
        events.add(lines);
        return events;
    }

    private static String text(Path file) throws MistakeException {
        try {
            long size = Files.size(file);
            if (size > MOST_EVENT_BYTES) {
                throw new MistakeException(file.toString(), "",
                        "expected at most " + MOST_EVENT_BYTES + " bytes, found " + size);
            }
            ByteBuffer bytes = ByteBuffer.allocate((int) size);
            RecordedFile.read(file, bytes);
            return new String(bytes.array(), 0, bytes.position(), StandardCharsets.UTF_8);
        } catch (IOException e) {
            throw new MistakeException(file.toString(), "", "can't be read");
        }
    }

    private static Json event(Path file, int number, String line) {
        try {
            Json event = Json.parse(file.toString(), number, line);
            return event.has("event") ? event : null;
        } catch (MistakeException e) {
            return null;
        }
    }

    /**
     * Completes the folder of a run whose process died. Copies the run's events: those in the file `events`
     * from the offset that request.json states. Copies the pixel files that these events name from the folder
     * `pixels`, which may be null. Returns false if the folder already has an outcome or events, if
     * request.json is missing or states no offset, or if a file is invalid; prints the error for an invalid
     * file.
     */
    public static boolean complete(Path folder, Path events, Path pixels) throws IOException {
        Path file = folder.resolve(REQUEST);
        if (!RecordedFile.isRegular(file) || Files.exists(folder.resolve(OUTCOME))
                || Files.exists(folder.resolve(EVENTS))) {
            return false;
        }
        try {
            Json from = Json.read(file).at("recording").get("eventsFrom");
            if (from == null) {
                return false;
            }
            copyFrom(events, from.integer(0L, Long.MAX_VALUE), folder.resolve(EVENTS));
            for (Event event : events(folder.resolve(EVENTS)).events("pixels")) {
                String name = event.text("file");
                if (pixels != null && RecordedFile.isPlain(name)
                        && Files.isRegularFile(pixels.resolve(name))) {
                    Files.copy(pixels.resolve(name), folder.resolve(name), StandardCopyOption.REPLACE_EXISTING);
                }
            }
            return true;
        } catch (MistakeException e) {
            System.err.println(Printable.error(e));
            return false;
        }
    }

    private static void copyFrom(Path events, long start, Path to) throws IOException {
        try (InputStream all = Files.newInputStream(events)) {
            all.skip(start);
            Files.copy(all, to);
        }
    }
}
