package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.judge.Breach;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.IOException;
import java.io.StringWriter;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.stream.IntStream;

import javax.xml.stream.XMLOutputFactory;
import javax.xml.stream.XMLStreamException;
import javax.xml.stream.XMLStreamWriter;

/**
 * Machine-readable results of a command: JSON (docs/results.schema.json), and JUnit with one test per
 * result.
 */
public final class Results {
    /** The name of the format, and its version. A new member doesn't change the version. */
    public static final String FORMAT = "orlu-results";
    public static final int VERSION = 1;
    /** Stands for standard output instead of a file. */
    public static final Path STANDARD_OUTPUT = Path.of("-");

    private final String mCommand;
    private final List<Result> mResults = new ArrayList<>();

    private record Result(String name, Verdict verdict, double seconds, Map<String, Object> json) {
    }

    /** Creates an empty list of results. `command` is the subcommand, or "run" for ./run itself. */
    public Results(String command) {
        mCommand = command;
    }

    /** Adds a result. `name` is for people; `members` follow the name and the verdict in JSON. */
    public void add(String name, Verdict verdict, double milliseconds, Map<String, Object> members) {
        Map<String, Object> json = JsonWriter.object("name", name, "verdict", JsonWriter.object("ok",
                verdict.status() == Verdict.OK, "status", verdict.status(), "reasons", verdict.reasons()));
        if (verdict.breaches() != null) {
            json.put("breaches", verdict.breaches().stream().map(Breach::json).toList());
        }
        json.putAll(members);
        mResults.add(new Result(name, verdict, milliseconds / 1000, json));
    }

    /** Adds the results that another process wrote as JSON. */
    public void addAll(Path file) throws MistakeException {
        for (Json result : Json.read(file).require("results").list()) {
            mResults.add(new Result(result.string("name", ""), verdict(result), milliseconds(result) / 1000,
                    JsonWriter.object()));
            result.members().forEach(mResults.get(mResults.size() - 1).json()::put);
        }
    }

    /** Parses the verdict of a JSON result. */
    public static Verdict verdict(Json result) throws MistakeException {
        Json verdict = result.require("verdict");
        return new Verdict(verdict.require("status").integer(0, 255), verdict.require("reasons").strings());
    }

    /** Returns the total milliseconds of a result's calls into the library; NaN if it has no times. */
    public static double milliseconds(Json result) {
        Json times = result.get("milliseconds");
        return times == null ? Double.NaN : times.entries().values().stream()
                .mapToDouble(time -> Double.parseDouble(time.text())).sum();
    }

    /** Returns the first status that is not OK; OK if there is none. */
    public int status() {
        return mResults.stream().mapToInt(result -> result.verdict().status())
                .filter(status -> status != Verdict.OK).findFirst().orElse(Verdict.OK);
    }

    /** Returns the indexes of the results that are not ok. */
    public List<Integer> failed() {
        return IntStream.range(0, mResults.size())
                .filter(i -> mResults.get(i).verdict().status() != Verdict.OK).boxed().toList();
    }

    public int size() {
        return mResults.size();
    }

    /** Writes both files; a null path skips its file. */
    public void write(Path json, Path junit) throws IOException {
        if (json != null) {
            write(json, JsonWriter.pretty(JsonWriter.object("format", FORMAT, "version", VERSION, "command",
                    mCommand, "ok", status() == Verdict.OK, "status", status(), "results",
                    mResults.stream().map(Result::json).toList())));
        }
        if (junit != null) {
            write(junit, junit());
        }
    }

    private static void write(Path file, String text) throws IOException {
        if (file.equals(STANDARD_OUTPUT)) {
            System.out.print(text);
        } else {
            Files.writeString(file, text);
        }
    }

    private String junit() throws IOException {
        StringWriter text = new StringWriter();
        try {
            XMLStreamWriter xml = XMLOutputFactory.newDefaultFactory().createXMLStreamWriter(text);
            xml.writeStartDocument("UTF-8", "1.0");
            xml.writeCharacters("\n");
            xml.writeStartElement("testsuite");
            xml.writeAttribute("name", "./run " + mCommand);
            xml.writeAttribute("tests", String.valueOf(mResults.size()));
            xml.writeAttribute("failures", String.valueOf(failed().size()));
            for (Result result : mResults) {
                xml.writeCharacters("\n  ");
                xml.writeStartElement("testcase");
                xml.writeAttribute("classname", mCommand);
                xml.writeAttribute("name", Printable.line(result.name()));
                xml.writeAttribute("time", "%.3f".formatted(Double.isNaN(result.seconds()) ? 0 : result.seconds()));
                if (result.verdict().status() != Verdict.OK) {
                    xml.writeStartElement("failure");
                    xml.writeAttribute("message",
                            Printable.line(String.join("; ", result.verdict().reasons())));
                    xml.writeEndElement();
                }
                xml.writeEndElement();
            }
            xml.writeCharacters("\n");
            xml.writeEndDocument();
            xml.close();
        } catch (XMLStreamException e) {
            throw new IOException(e);
        }
        return text + "\n";
    }
}
