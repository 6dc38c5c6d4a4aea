package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.image.Demosaic;
import com.orlu.orlu3rdalgoservice.tool.image.ImageDifference;
import com.orlu.orlu3rdalgoservice.tool.image.Mosaic;
import com.orlu.orlu3rdalgoservice.tool.image.PictureData;
import com.orlu.orlu3rdalgoservice.tool.image.PixelRows;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;

/** A page that shows pictures side by side for comparison, in columns or as rows that wrap. */
public final class ContactSheet {
    private final String mTitle;
    private final String mAbout;
    private final List<String> mColumns;
    private final List<Object> mRows = new ArrayList<>();

    /** Creates a page without rows. If `columns` is empty, the pictures of a row wrap. */
    public ContactSheet(String title, String about, List<String> columns) {
        mTitle = title;
        mAbout = about;
        mColumns = columns;
    }

    /** Returns a cell with a caption, lines and a picture. If `picture` is null, shows `problem` instead. */
    public static Map<String, Object> cell(
            String caption, List<String> lines, PixelRows picture, String problem) {
        return JsonWriter.object("caption", caption, "lines", lines, "problem", problem, "picture",
                picture == null ? "" : PictureData.small(picture).uri());
    }

    /** Returns the cell of an output of a run. It has no picture if the run or its output is missing. */
    public static Map<String, Object> cell(String caption, List<String> lines, Run run, int output)
            throws MistakeException {
        PixelRows pixels = run == null || run.results().size() <= output ? null
                : pixels(run.results().get(output));
        return cell(caption, lines, pixels instanceof Mosaic mosaic ? new Demosaic(mosaic) : pixels,
                "no picture");
    }

    private static PixelRows pixels(ImageLayout image) throws MistakeException {
        byte[] bytes = image.bytes();
        int[] strides = image.rowStrides();
        return bytes == null || strides == null || strides.length == 0 ? null
                : ImageDifference.pixels(image.format(), image.width(), image.height(), strides[0], bytes);
    }

    /** Adds a row. If the page has columns, `cells` contains one cell for each column. */
    public void add(String name, Verdict verdict, List<String> lines, List<Map<String, Object>> cells) {
        mRows.add(JsonWriter.object(
                "name", name, "ok", verdict.status() == Verdict.OK, "lines", lines, "cells", cells));
    }

    /** Writes the page to this folder, which is created if missing, and returns its file. */
    public Path write(Path folder) throws IOException {
        Files.createDirectories(folder);
        Path file = folder.resolve("index.html");
        Files.writeString(file, PageTemplate.SHEET.page(mTitle, JsonWriter.object(
                "title", mTitle, "about", mAbout, "columns", mColumns, "rows", mRows)));
        return file;
    }
}
