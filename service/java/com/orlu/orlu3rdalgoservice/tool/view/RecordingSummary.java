package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.HandedImage;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.request.ImageLayout;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.PrintStream;
import java.time.Instant;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

/** Prints the content of a recording. */
public final class RecordingSummary {
    private static final int LABEL_WIDTH = 18;
    private static final long MOST_MILLISECONDS = 1L << 50;

    private final Run mRun;
    private final PrintStream mTo;
    private final TextLayout mLines;

    public RecordingSummary(Run run, PrintStream to) {
        mRun = run;
        mTo = to;
        mLines = new TextLayout(to, TextLayout.TERMINAL);
    }

    /** Prints the recorded items, one per line; consecutive equal items share a line. */
    public void print() throws MistakeException {
        Json header = mRun.header();
        mTo.println(Printable.line(mRun.folder().toString()));
        long time = header.require("milliseconds").integer(0, MOST_MILLISECONDS);
        // In a copy without private facts, the time is 0, and the machine and the system are missing.
        line("recorded", (time == 0 ? "" : Instant.ofEpochMilli(time) + " on " + header.string("machine", "")
                + ", " + header.string("system", "") + ", ") + "interface " + header.require("interface").text());
        line("request", mRun.request().id() + " \"" + mRun.request().type() + "\"");
        if (!mRun.trimmed().isEmpty()) {
            line("trimmed", mRun.trimmed());
        }
        for (String name : List.of("client", "properties")) {
            Map<String, Json> part = mRun.root().has(name) ? mRun.root().get(name).members() : Map.of();
            if (!part.isEmpty()) {
                line(name, part.entrySet().stream().map(value -> value.getKey() + " = "
                        + JsonWriter.line(value.getValue())).collect(Collectors.joining(", ")));
            }
        }
        printFrames();
        printImages("input", mRun.inputs());
        printImages("output", mRun.outputs());
        printRun();
        printEnd();
    }

    private void line(String name, String text) {
        mLines.print(2, LABEL_WIDTH, name, text);
    }

    private void lines(String name, List<String> texts) {
        for (int start = 0; start < texts.size();) {
            int end = start + 1;
            while (end < texts.size() && texts.get(end).equals(texts.get(start))) {
                ++end;
            }
            line(name + " " + start + (end - start == 1 ? "" : " to " + (end - 1)), texts.get(start));
            start = end;
        }
    }

    private void printFrames() {
        lines("frame", mRun.frames().stream().map(frame ->
                frame.get("captureResult").entries().size() + " tags of the camera, "
                        + frame.get("composition").entries().size() + " values of the service").toList());
    }

    private void printImages(String name, List<ImageLayout> images) {
        lines(name, images.stream().map(image -> image.text() + bytes(image)).toList());
    }

    private static String bytes(ImageLayout image) {
        if (image.file() == null) {
            return image.kept().isEmpty() ? "" : ", bytes not kept";
        }
        try {
            image.bytes();
        } catch (MistakeException e) {
            return ", " + e.getMessage();
        }
        return ", " + image.size() + " bytes";
    }

    private void printHanded(List<HandedImage> images) {
        for (String call : List.of("process", "callback")) {
            lines(call + (call.equals("process") ? " in" : " out"),
                    images.stream().filter(image -> image.call().equals(call)).map(HandedImage::text)
                            .toList());
        }
    }

    private void printRun() {
        if (!mRun.eventsProblem().isEmpty()) {
            line("events", mRun.eventsProblem());
        }
        if (mRun.hasEvents()) {
            line("passed on", mRun.parameters().size() + " parameters, algorithms "
                    + new Handover(mRun.events()).algorithms());
        }
        mRun.outcomes().forEach(this::line);
        if (!mRun.isKnown()) {
            line("run", "not recorded");
            return;
        }
        int puts = mRun.puts().stream().mapToInt(Map::size).sum();
        line("put", puts + " values into " + mRun.puts().size() + " frames");
        printImages("result", mRun.results());
        printHanded(mRun.handed());
        // A complete recording may lack the return of a full-async request's callback: Java may fetch the
        // results before the callback returns.
        if (!mRun.isComplete()) {
            mRun.events().open().forEach(call -> line("open", call.operation() + " has not returned"));
        }
    }

    private void printEnd() {
        line("end", mRun.isComplete() ? "whole" : "not reached: " + mRun.problem());
        mRun.notes().forEach(note -> line("note", note));
    }
}
