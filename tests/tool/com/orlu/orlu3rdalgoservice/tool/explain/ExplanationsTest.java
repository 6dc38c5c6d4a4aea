package com.orlu.orlu3rdalgoservice.tool.explain;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertTrue;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.Dependence;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;
import com.orlu.orlu3rdalgoservice.tool.run.RequestRunner;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch;

import org.junit.Rule;
import org.junit.Test;
import org.junit.rules.TemporaryFolder;

import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.Set;

/** Tests the explanation of a parameter that appears only if a tag changes in all frames. */
public final class ExplanationsTest {
    private static final String EVENTS = """
            {"event": "lookup", "frame": 0, "tag": "t", "source": "captureResult", "outcome": "absent"}
            {"event": "lookup", "frame": 0, "tag": "u", "source": "composition", "outcome": "found", "asked": "X"}
            {"event": "begin", "n": 1, "op": "setValue", "section": "s", "key": "a", "bytes": "00"}
            {"event": "begin", "n": 2, "op": "setValue", "section": "s", "key": "b", "bytes": "00"}
            {"event": "begin", "n": 3, "op": "setValue", "section": "s", "key": "c", "bytes": "00"}
            {"event": "begin", "n": 4, "op": "setValue", "section": "s", "key": "d", "bytes": "00"}
            """;

    @Rule
    public final TemporaryFolder folder = new TemporaryFolder();

    @Test
    public void namesParametersThatNeedAllFrames() throws Exception {
        Path file = folder.newFile().toPath();
        Files.writeString(file,
                "{\"request\": {\"id\": 1}, \"frames\": [{}], \"inputs\": [], \"outputs\": []}");
        RecordedEvents events = new RecordedEvents();
        for (String line : EVENTS.split("\n")) {
            events.add(List.of(Json.parse("events", 1, line)));
        }
        Run run = Run.of("run", RequestFileReader.read(file, null), events, new Stopwatch(), null,
                RequestRunner.Ran.NONE);
        Dependences trials = new Dependences(List.of(new Dependence(
                0, "captureResult", "t", "Integer", Set.of(), Set.of("s/new"))), Set.of(), 1, 0, "");
        assertTrue(new Explanations(run, trials, new SourceLines()).possibleNames().contains("s/new"));
        assertEquals("s/new not passed (all frames together)", new TagPrinter(run, trials).groups()
                .get("absent, so the default applies").rows().get(0).text());
    }
}
