package com.orlu.orlu3rdalgoservice.tool.recording;

import com.google.gson.JsonObject;

import com.orlu.orlu3rdalgoservice.tool.events.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.report.Handover;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileException;

import java.io.PrintStream;
import java.time.Instant;
import java.util.List;
import java.util.Map;

/** Says what is in a recording. */
public final class RecordingSummary {
    private final RecordedRequest mRecorded;
    private final PrintStream mTo;

    public RecordingSummary(RecordedRequest recorded, PrintStream to) {
        mRecorded = recorded;
        mTo = to;
    }

    /** Prints a line on each thing, down to where the recording ends. */
    public void print() throws RequestFileException {
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
        for (String name : List.of("client", "properties")) {
            JsonObject part = mRecorded.part(name);
            if (part != null && part.getAsJsonObject("values").size() > 0) {
                line(name, part.get("values").toString());
            }
        }
        printFrames();
        printImages("input");
        printImages("output");
        printRun();
        printEnd();
    }

    private void line(String name, String text) {
        mTo.printf("  %-11s %s%n", name, text);
    }

    private void printFrames() {
        int frame = 0;
        for (JsonObject part : mRecorded.parts("frame")) {
            line("frame " + frame++, part.getAsJsonObject("captureResult").size() + " tags of the camera, "
                    + part.getAsJsonObject("composition").size() + " values of the service");
        }
    }

    private void printImages(String part) {
        int index = 0;
        for (RecordedImage image : mRecorded.images(part)) {
            String bytes = image.hasBytes() ? image.part().get("file").getAsString()
                    : image.part().has("kept") ? "bytes not kept" : "";
            line(part + " " + index++, image.text() + (bytes.isEmpty() ? "" : ", " + bytes));
        }
    }

    private void printRun() throws RequestFileException {
        RecordedEvents events = mRecorded.events();
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
        for (HandedImage image : run.handed()) {
            line(image.call(), image.kind() + " " + image.index() + ", " + image.text());
        }
        // The callback of a full-async request returns after its results were fetched.
        if (!mRecorded.isComplete()) {
            events.open().forEach(call -> line("open", call.operation() + " has not returned"));
        }
    }

    private void printEnd() throws RequestFileException {
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
