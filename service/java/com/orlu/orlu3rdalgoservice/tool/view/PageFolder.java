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
import java.util.List;
import java.util.Map;

/**
 * The folder of a run's pages. Each request gets a page as soon as it finishes; a run of several requests
 * also gets an index. The file WorkFolder.pages() stores the state, so that another process can continue
 * after a crash.
 */
public final class PageFolder {
    private static final double BYTES_PER_KILOBYTE = 1000;
    /** Fields of a page's data that the index shows. */
    private static final List<String> ENTRY_FIELDS =
            List.of("file", "about", "verdict", "findings", "algorithms", "milliseconds");

    private final Path mFolder;
    private final boolean mHasIndex;
    private final boolean mIsPart;
    private final List<Object> mEntries = new ArrayList<>();
    private long mEnd;

    /** `requests` is the number of the run's requests. The folder is created with its first file. */
    public PageFolder(Path folder, int requests) {
        mFolder = folder;
        mIsPart = requests == 1 && System.getenv(WorkFolder.PAGES) != null;
        mHasIndex = requests > 1 || mIsPart;
    }

    /** Restores the state that another process stored before it died. */
    public void resume() throws IOException {
        Json state = state(WorkFolder.pages());
        if (state != null) {
            mEntries.addAll(state.get("entries").elements());
            mEnd = Long.parseLong(state.get("end").text());
        }
    }

    /**
     * Adds a request that another process ran. `file` contains the state of that process. If the state has no
     * page, or `file` is null or missing, the index shows the request as not run.
     */
    public void addOther(Path file, Path request) throws IOException {
        Json state = state(file);
        mEntries.add(state == null || state.get("entries").elements().isEmpty() ? entry(request)
                : state.get("entries").elements().get(0));
    }

    // Returns null if `file` is null or does not exist.
    private static Json state(Path file) throws IOException {
        try {
            return file == null || !Files.exists(file) ? null : Json.read(file);
        } catch (MistakeException e) {
            throw new IOException(e.getMessage(), e);
        }
    }

    // Returns the index entry of a request without a page.
    private static Map<String, Object> entry(Path request) {
        return JsonWriter.object("file", request.toString());
    }

    /** Returns the number of requests that were added. */
    public int count() {
        return mEntries.size();
    }

    /** Returns the System.nanoTime() after the last page was written; 0 if no page was written. */
    public long end() {
        return mEnd;
    }

    /**
     * Writes the last request's page and returns a line that names the page. If the request's process died,
     * the page shows the timeline since the previous page. `exhibits` is null if the request's inputs can't
     * be recreated.
     */
    public String add(RunReport report, Exhibits exhibits, Timeline timeline, SourceLines source)
            throws IOException {
        Map<String, Object> data = new PageData(report, exhibits, source).json();
        data.put("hasIndex", mHasIndex);
        Timeline.Part part = exhibits == null || exhibits.isLost() ? timeline.since(mEnd)
                : timeline.ofLastRequest();
        data.put("trace", part.events());
        data.put("start", part.start());
        data.put("log", LogLines.between(part.start(), part.end()));
        // "index" is reserved for the index.
        String name = report.run().name().equals("index") ? "index-request" : report.run().name();
        Path file = mFolder.resolve(name + ".html");
        mEntries.add(entry(report, exhibits, data, file));
        Files.createDirectories(mFolder);
        String page = PageTemplate.REQUEST.page(name, data);
        Files.writeString(file, page);
        mEnd = System.nanoTime();
        keepState();
        return "%s (%.0f kB)".formatted(file, page.length() / BYTES_PER_KILOBYTE);
    }

    private static Map<String, Object> entry(
            RunReport report, Exhibits exhibits, Map<String, Object> data, Path file) {
        Map<String, Object> entry = JsonWriter.object("page", file.getFileName().toString());
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
        if (WorkFolder.pages() != null) {
            Files.writeString(WorkFolder.pages(),
                    JsonWriter.line(JsonWriter.object("entries", mEntries, "end", mEnd)));
        }
    }

    /** Writes the index if the run has several requests. It lists requests without a page as not run. */
    public void writeIndex(List<Path> requests) throws IOException {
        if (!mHasIndex || mIsPart) {
            return;
        }
        List<Object> entries = new ArrayList<>(mEntries);
        requests.stream().skip(entries.size()).forEach(request -> entries.add(entry(request)));
        Files.createDirectories(mFolder);
        Files.writeString(index(),
                PageTemplate.INDEX.page("Requests", JsonWriter.object("entries", entries)));
    }

    public Path index() {
        return mFolder.resolve("index.html");
    }
}
