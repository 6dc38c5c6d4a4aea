package com.orlu.orlu3rdalgoservice.tool.run;

import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.ExecutionException;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.atomic.AtomicInteger;

/** Runs tasks in parallel, and passes their results to a callback in the order of the tasks. */
public final class SideBySide {
    /** Limit on the wait for running tasks. It exceeds the ten seconds that a request may wait. */
    private static final long LONGEST_TASK_SECONDS = 30;

    /** Receives a result. */
    public interface Taker<T> {
        void take(T result) throws MistakeException, IOException;
    }

    private SideBySide() {
    }

    /**
     * Runs the tasks of `work` on `jobs` threads, and passes the results to `taker` on this thread. `what`
     * names the work in the progress display. Throws the exception of the first task that fails, or of
     * `taker`. Before it throws, waits for the running tasks for at most LONGEST_TASK_SECONDS, because they
     * may use objects that the caller closes.
     */
    public static <T> void run(String what, int jobs, List<Callable<T>> work, Taker<T> taker)
            throws MistakeException, IOException {
        ExecutorService threads = Executors.newFixedThreadPool(jobs);
        AtomicInteger done = new AtomicInteger();
        try {
            Progress.show(what, 0, work.size());
            List<Future<T>> results = new ArrayList<>();
            for (Callable<T> piece : work) {
                results.add(threads.submit(() -> {
                    T result = piece.call();
                    Progress.show(what, done.incrementAndGet(), work.size());
                    return result;
                }));
            }
            for (Future<T> result : results) {
                T taken = result.get();
                Progress.pause();
                taker.take(taken);
            }
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
            throw new IllegalStateException("interrupted", e);
        } catch (ExecutionException e) {
            rethrow(e.getCause());
        } finally {
            threads.shutdownNow();
            awaitEnd(threads);
            Progress.end();
        }
    }

    // Waits for the running tasks. The wait is limited, because a task may hang in the algorithm library.
    private static void awaitEnd(ExecutorService threads) {
        try {
            threads.awaitTermination(LONGEST_TASK_SECONDS, TimeUnit.SECONDS);
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
        }
    }

    private static void rethrow(Throwable e) throws MistakeException, IOException {
        if (e instanceof MistakeException mistake) {
            throw mistake;
        }
        if (e instanceof IOException failure) {
            throw failure;
        }
        throw e instanceof RuntimeException unchecked ? unchecked : new IllegalStateException(e);
    }
}
