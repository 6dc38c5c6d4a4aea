package com.orlu.orlu3rdalgoservice.tool.view;

import com.google.gson.JsonObject;

import com.orlu.orlu3rdalgoservice.tool.model.HandedImage;
import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedImage;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedRequest;
import com.orlu.orlu3rdalgoservice.tool.model.RunRecord;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.PrintStream;
import java.time.Instant;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;

/** Says what is in a recording. */
public final class RecordingSummary {
    private static final int LABEL_WIDTH = 18;

    private final RecordedRequest mRecorded;
    private final PrintStream mTo;
    private final TextLayout mLines;

    public RecordingSummary(RecordedRequest recorded, PrintStream to) {
        mRecorded = recorded;
        mTo = to;
        mLines = new TextLayout(to, TextLayout.TERMINAL);
    }

    /** Prints a line on each thing, down to where the recording ends. */
    public void print() throws MistakeException {
        JsonObject header = mRecorded.part("header");
        mTo.println(mRecorded.folder());
        line("recorded",
                Instant.ofEpochMilli(header.get("milliseconds").getAsLong()) + " on "
                        + header.get("machine").getAsString() + ", " + header.get("system").getAsString()
                        + ", interface " + header.get("interface"));
        JsonObject request = mRecorded.part("request");
        if (request != null) {
            line("request", request.get("id") + " \"" + request.get("type").getAsString() + "\"");
        }
        if (!mRecorded.trimmed().isEmpty()) {
            line("trimmed", mRecorded.trimmed());
        }
        for (String name : List.of("client", "properties")) {
            JsonObject part = mRecorded.part(name);
            if (part != null && part.getAsJsonObject("values").size() > 0) {
                List<String> values = new ArrayList<>();
                part.getAsJsonObject("values").entrySet().forEach(
                        value -> values.add(value.getKey() + " = " + value.getValue()));
                line(name, String.join(", ", values));
            }
        }
        printFrames();
        printImages("input");
        printImages("output");
        printRun();
        printEnd();
    }

    private void line(String name, String text) {
        mLines.print(2, LABEL_WIDTH, name, text);
    }

    // One line for those that follow each other and have the same text: "frame 1 to 6".
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
        lines("frame", mRecorded.parts("frame").stream().map(part ->
                part.getAsJsonObject("captureResult").size() + " tags of the camera, "
                        + part.getAsJsonObject("composition").size() + " values of the service").toList());
    }

    private void printImages(String part) {
        lines(part, mRecorded.images(part).stream().map(image -> image.text() + bytes(image)).toList());
    }

    private static String bytes(RecordedImage image) {
        if (!image.hasBytes()) {
            return image.part().has("kept") ? ", bytes not kept" : "";
        }
        try {
            image.bytes();
        } catch (MistakeException e) {
            return ", " + e.getMessage();
        }
        return ", " + image.number("size") + " bytes";
    }

    private void printHanded(List<HandedImage> images) {
        for (String call : List.of("process", "callback")) {
            lines(call + (call.equals("process") ? " in" : " out"),
                    images.stream().filter(image -> image.call().equals(call)).map(HandedImage::text)
                            .toList());
        }
    }

    private void printRun() throws MistakeException {
        RecordedEvents events = mRecorded.events();
        if (!mRecorded.eventsProblem().isEmpty()) {
            line("events", mRecorded.eventsProblem());
        }
        if (!events.calls().isEmpty()) {
            Handover handover = new Handover(events);
            line("handed on",
                    handover.parameters().size() + " parameters, algorithms " + handover.algorithms());
        }
        RunRecord run = RunRecord.of(mRecorded, "");
        run.outcomes().forEach(this::line);
        if (!run.isKnown()) {
            line("run", "not recorded");
            return;
        }
        int puts = run.puts().stream().mapToInt(Map::size).sum();
        line("put", puts + " values into " + run.puts().size() + " frames");
        printImages("result");
        printHanded(run.handed());
        // The callback of a full-async request returns after its results were fetched.
        if (!mRecorded.isComplete()) {
            events.open().forEach(call -> line("open", call.operation() + " has not returned"));
        }
    }

    private void printEnd() throws MistakeException {
        JsonObject failed = mRecorded.part("failed");
        String reason = !mRecorded.problem().isEmpty() ? mRecorded.problem()
                : failed != null ? "recording failed: " + failed.get("what").getAsString()
                                 : "the process ended";
        line("end", mRecorded.isComplete() ? "whole" : "not reached: " + reason);
        RequestFile request = mRecorded.part("running") == null ? null : mRecorded.toRequest();
        if (request != null) {
            mRecorded.notes().forEach(note -> line("note", note));
        }
    }
}
