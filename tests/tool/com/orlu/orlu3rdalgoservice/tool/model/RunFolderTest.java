package com.orlu.orlu3rdalgoservice.tool.model;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertThrows;

import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.nio.file.Files;
import java.nio.file.Path;

import org.junit.Rule;
import org.junit.Test;
import org.junit.rules.TemporaryFolder;

/** Tests damaged and incomplete folders of runs. */
public final class RunFolderTest {
    private static final String WHOLE =
            "{\"event\":\"end\",\"n\":3,\"op\":\"createClient\",\"result\":\"0x7f\"}\n";

    @Rule
    public final TemporaryFolder folder = new TemporaryFolder();

    @Test
    public void readsUpToTheFirstDamagedLine() throws Exception {
        Object[][] rows = {
            {2, "{\"event\":\"end\",\"n\":4,\"result\":-1,\"bytes\":null}"},
            {2, "{\"event\":\"begin\",\"n\":4,\"bytes\":\"0aff\",\"algoList\":[\"hdr\"]}"},
            // A field of a wrong type counts as absent.
            {2, "{\"event\":\"begin\",\"n\":4,\"bytes\":\"0agf\"}"},
            {2, "{\"event\":\"begin\",\"bytes\":\"0af\",\"n\":\"0xx4\",\"op\":{\"a\":1}}"},
            {2, "{\"event\":\"end\",\"result\":[1,2],\"algoList\":\"hdr\"}"},
            {1, "{\"event\":\"begin\",\"reqId\":1e}"}, {1, "[\"event\"]"}, {1, "null"},
            {1, "{\"evenp\":\"begin\"}"}, {1, "{\"event\":\"begin\""},
        };
        for (Object[] row : rows) {
            Path file = folder.newFile().toPath();
            Files.writeString(file, WHOLE + row[1] + "\n");
            assertEquals((String) row[1], row[0], RunFolder.events(file).events().size());
        }
    }

    @Test
    public void namesAMissingRequest() throws Exception {
        Path run = folder.newFolder().toPath();
        Files.writeString(run.resolve(RunFolder.OUTCOME), "{}");
        MistakeException e = assertThrows(MistakeException.class, () -> RunFolder.read(run, "run"));
        assertEquals(run + "/request.json: no such regular file", e.getMessage());
    }
}
