package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.explain.SourceLines;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.judge.Exhibits;
import com.orlu.orlu3rdalgoservice.tool.judge.ImageExhibit;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * The folder of a run's pages: one for each request, written as soon as the request finishes, and an index if
 * there are several. The work folder keeps the state, so that another process can continue after a crash.
 */
public final class PageFolder {
    private static final double BYTES_PER_KILOBYTE = 1000;
    /** The fields of a page's data that the index uses. */
    private static final List<String> ENTRY_FIELDS =
            List.of("file", "about", "verdict", "findings", "algorithms", "milliseconds");

    private final Path mFolder;
    private final Sources mSources;
    private final boolean mHasIndex;
    private final boolean mIsPart;
    private final List<Object> mEntries = new ArrayList<>();
    private long mEnd;

    /**
     * The files that a page is made from besides a report. Each may be null or missing.
     *
     * @param events         the calls between the libraries
     * @param algorithmTrace the algorithm library's report on its work
     * @param log            the native side's log
     * @param state          the state of earlier pages
     */
    public record Sources(Path events, Path algorithmTrace, Path log, Path state) {
        /** The sources in the launcher's work folder. */
        public static Sources ofWorkFolder() {
            return new Sources(WorkFolder.events(), WorkFolder.algorithmTrace(), WorkFolder.log(),
                    WorkFolder.pages());
        }
    }

    /** A folder for the pages of this many requests, created with the first page. */
    public PageFolder(Path folder, Sources sources, int requests) {
        mFolder = folder;
        mSources = sources;
        mIsPart = requests == 1 && System.getenv(WorkFolder.PAGES) != null;
        mHasIndex = requests > 1 || mIsPart;
    }

    /** Continues after another process died. */
    public void resume() throws IOException {
        if (mSources.state() != null && Files.exists(mSources.state())) {
            try {
                Json state = Json.read(mSources.state());
                mEntries.addAll(state.require("entries").list());
                mEnd = state.require("end").integer(0L, Long.MAX_VALUE);
            } catch (MistakeException e) {
                throw new IOException(e.getMessage(), e);
            }
        }
    }

    /** Adds a page that another process wrote, whose state is in this file if it exists. */
    public void addOther(Path state, Path request) throws IOException {
        try {
            List<Json> entries = Files.exists(state) ? Json.read(state).require("entries").list() : List.of();
            mEntries.add(entries.isEmpty() ? JsonWriter.object("file", request.toString()) : entries.get(0));
        } catch (MistakeException e) {
            throw new IOException(e.getMessage(), e);
        }
    }

    /** How many requests have a page. */
    public int count() {
        return mEntries.size();
    }

    /** When the last of them finished, by System.nanoTime(); 0 if there is none. */
    public long end() {
        return mEnd;
    }

    /**
     * Writes the page of the last request, which is in the timeline unless its process died earlier.
     * `exhibits` is null if its inputs can't be recreated. Returns a line that names the page.
     */
    public String add(RunReport report, Exhibits exhibits, Timeline timeline, SourceLines source)
            throws IOException {
        Map<String, Object> data = new PageData(report, exhibits, source).json();
        data.put("hasIndex", mHasIndex);
        List<Map<String, Object>> trace = timeline.trace(mSources.events(), mSources.algorithmTrace());
        RequestTimeline own = new RequestTimeline(trace, timeline.origin());
        if (exhibits == null || exhibits.isLost()) {
            own.from(mEnd);
        } else {
            own.ofLastRequest();
        }
        data.put("trace", own.events());
        data.put("start", own.start());
        data.put("log", LogLines.between(mSources.log(), own.start(), own.end()));
        // "index" is reserved for the index.
        String name = report.run().name().equals("index") ? "index-request" : report.run().name();
        Path file = mFolder.resolve(name + ".html");
        mEntries.add(entry(report, exhibits, data, file));
        Files.createDirectories(mFolder);
        String page = PageTemplate.request(name, data);
        Files.writeString(file, page);
        mEnd = System.nanoTime();
        keepState();
        return "%s (%.0f kB)".formatted(file, page.length() / BYTES_PER_KILOBYTE);
    }

    private static Map<String, Object> entry(
            RunReport report, Exhibits exhibits, Map<String, Object> data, Path file) {
        Map<String, Object> entry = new LinkedHashMap<>();
        entry.put("page", file.getFileName().toString());
        for (String field : ENTRY_FIELDS) {
            entry.put(field, data.get(field));
        }
        if (exhibits != null && exhibits.base() != null && exhibits.base().small() != null) {
            entry.put("in", exhibits.base().small().uri());
        }
        if (exhibits != null && !exhibits.outputs().isEmpty()) {
            ImageExhibit output = exhibits.outputs().get(0);
            entry.put("problem", output.problem());
            if (output.small() != null) {
                entry.put("out", output.small().uri());
            }
        }
        entry.put("id", report.run().request().id());
        return entry;
    }

    private void keepState() throws IOException {
        if (mSources.state() != null) {
            Map<String, Object> state = new LinkedHashMap<>();
            state.put("entries", mEntries);
            state.put("end", mEnd);
            Files.writeString(mSources.state(), JsonWriter.line(state));
        }
    }

    /** Writes the index if the run has several requests; those without a page have not run. */
    public void writeIndex(Iterable<Path> requests) throws IOException {
        if (!mHasIndex || mIsPart) {
            return;
        }
        List<Object> entries = new ArrayList<>(mEntries);
        int index = 0;
        for (Path request : requests) {
            if (index >= mEntries.size()) {
                Map<String, Object> entry = new LinkedHashMap<>();
                entry.put("file", request.toString());
                entries.add(entry);
            }
            ++index;
        }
        Map<String, Object> data = new LinkedHashMap<>();
        data.put("entries", entries);
        Files.createDirectories(mFolder);
        Files.writeString(index(), PageTemplate.index("Requests", data));
    }

    /** The page that links to the others. */
    public Path index() {
        return mFolder.resolve("index.html");
    }
}
