package com.orlu.orlu3rdalgoservice.tool.run;

import static org.junit.Assert.assertThrows;
import static org.junit.Assert.assertTrue;

import org.junit.Test;

import java.io.IOException;
import java.util.List;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.atomic.AtomicBoolean;

/** Tests how parallel tasks end after one of them fails. */
public final class SideBySideTest {
    @Test
    public void waitsForRunningTasksAfterAnException() {
        CountDownLatch isRunning = new CountDownLatch(1);
        AtomicBoolean hasFinished = new AtomicBoolean();
        assertThrows(IOException.class, () -> SideBySide.run("testing", 2, List.of(() -> {
            isRunning.await();
            throw new IOException("a task failed");
        }, () -> {
            isRunning.countDown();
            // Like a native call, ignores interrupts.
            for (long end = System.nanoTime() + 200_000_000L; System.nanoTime() < end;) {
                Thread.onSpinWait();
            }
            hasFinished.set(true);
            return 0;
        }), result -> { }));
        assertTrue(hasFinished.get());
    }
}
