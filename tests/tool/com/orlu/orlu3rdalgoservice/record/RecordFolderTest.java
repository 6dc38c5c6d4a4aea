package com.orlu.orlu3rdalgoservice.record;

import static org.junit.Assert.assertThrows;
import static org.junit.Assume.assumeTrue;

import org.junit.Rule;
import org.junit.Test;
import org.junit.rules.TemporaryFolder;

import java.io.File;
import java.io.IOException;

public final class RecordFolderTest {
    @Rule
    public final TemporaryFolder folder = new TemporaryFolder();

    @Test
    public void rejectsAFileThatEndsEarly() throws Exception {
        // A file of sysfs is shorter than its reported length. takeFile() copies it, because it can't move it
        // from another file system.
        File file = new File("/sys/devices/system/cpu/online");
        assumeTrue(file.length() == 4096);
        RecordFolder record = new RecordFolder(new File(folder.getRoot(), "record"), 1 << 20,
                RequestRecorder.Pixels.ALL);
        assertThrows(IOException.class, () -> record.takeFile(file, "0"));
    }
}
