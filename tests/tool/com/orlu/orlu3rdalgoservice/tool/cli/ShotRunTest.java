package com.orlu.orlu3rdalgoservice.tool.cli;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertThrows;

import org.junit.Rule;
import org.junit.Test;
import org.junit.rules.TemporaryFolder;

import java.io.IOException;
import java.nio.file.Path;
import java.util.List;

/** Tests a run whose process can't be started. */
public final class ShotRunTest {
    @Rule
    public final TemporaryFolder folder = new TemporaryFolder();

    @Test
    public void failureLeavesNoFiles() {
        System.setProperty("orlu.work", folder.getRoot().toString());
        System.setProperty("orlu.build", "");
        System.setProperty("orlu.launcher", folder.getRoot() + "/no such command");
        assertThrows(IOException.class, () -> ShotRun.of(Path.of("request.json"), null, List.of()));
        assertArrayEquals(new String[0], folder.getRoot().list());
    }
}
