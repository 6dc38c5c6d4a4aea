package com.orlu.orlu3rdalgoservice.tool.model;

import static org.junit.Assert.assertEquals;

import java.nio.file.Files;
import java.nio.file.Path;

import org.junit.Rule;
import org.junit.Test;
import org.junit.rules.TemporaryFolder;

/** How far a file of events is read in which bits were turned over. */
public final class EventLinesTest {
    private static final String WHOLE =
            "{\"event\":\"end\",\"n\":3,\"op\":\"createClient\",\"result\":\"0x7f\"}\n";

    @Rule
    public final TemporaryFolder folder = new TemporaryFolder();

    @Test
    public void readsUpToTheFirstDamagedLine() throws Exception {
        Object[][] rows = {
            {2, "{\"event\":\"end\",\"n\":4,\"result\":-1,\"bytes\":null}"},
            {2, "{\"event\":\"begin\",\"n\":4,\"bytes\":\"0aff\",\"algoList\":[\"hdr\"]}"},
            {1, "{\"event\":\"begin\",\"n\":4,\"bytes\":\"0agf\"}"},
            {1, "{\"event\":\"begin\",\"bytes\":\"0af\"}"},
            {1, "{\"event\":\"begin\",\"n\":\"0xx4\"}"}, {1, "{\"event\":\"begin\",\"reqId\":1e}"},
            {1, "{\"event\":\"end\",\"result\":\"0x7g\"}"}, {1, "{\"event\":\"end\",\"result\":[1,2]}"},
            {1, "{\"event\":\"begin\",\"op\":{\"a\":1}}"}, {1, "{\"event\":\"begin\",\"algoList\":\"hdr\"}"},
            {1, "{\"evenp\":\"begin\"}"}, {1, "{\"event\":\"begin\""},
        };
        for (Object[] row : rows) {
            Path file = folder.newFile().toPath();
            Files.writeString(file, WHOLE + row[1] + "\n");
            assertEquals((String) row[1], row[0], EventLines.read(file).size());
        }
    }
}
