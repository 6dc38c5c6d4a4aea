package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.tool.explain.Trials;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSize;
import com.orlu.orlu3rdalgoservice.tool.image.FrameSynthesis;
import com.orlu.orlu3rdalgoservice.tool.image.Picture;
import com.orlu.orlu3rdalgoservice.tool.image.Progress;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;
import com.orlu.orlu3rdalgoservice.tool.request.RequestTags;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Set;

/**
 * Runs the trials of one command line. Writes the results to the work folder or, for "./run trials", to the
 * file of --record. The trials run in a separate process, because they need an algorithm library that answers
 * at once, and the native library can open only one algorithm library.
 */
final class TrialSession {
    private TrialSession() {
    }

    /**
     * Reports mistakes in arguments and files only for "./run trials". For other command lines, the command's
     * own process reports them.
     */
    static int run(String[] arguments, String library) throws IOException {
        List<Dependences> all = new ArrayList<>();
        Path to = WorkFolder.trials();
        try {
            Subcommand command = Commands.parse(arguments);
            if (command instanceof TrialsCommand alone) {
                to = alone.record;
                GivenPaths.checkRead(List.of(alone.request));
                all.add(trials(RequestFileReader.read(alone.request, null), alone.only, library));
            } else if (command instanceof RunCommand run && !run.checked().tried.check
                    && run.tried.jobs == 0) {
                for (Path file : run.requests()) {
                    RequestFile request = RequestFileReader.read(file, run.tried.photo);
                    RequestTags.set(request, run.tried.tags);
                    all.add(trials(request, Set.of(), library));
                }
            }
        } catch (IllegalArgumentException | MistakeException e) {
            if (arguments.length > 0 && arguments[0].equals("trials")) {
                // No other process reports the mistake.
                System.err.println(Printable.error(e));
            }
            return Verdict.REFUSED;
        } catch (ErrnoException | IllegalStateException | OutOfMemoryError | UnsatisfiedLinkError e) {
            all.add(Dependences.unknown("the trials ended early: " + Printable.message(e)));
        }
        Dependences.write(to, all);
        return Verdict.OK;
    }

    /** Waits for the trials, and returns their results for a request of this command line. */
    static Dependences found(int request) throws IOException {
        awaitEnd();
        Path file = WorkFolder.trials();
        if (file == null || !Files.exists(file)) {
            return Dependences.unknown("off".equals(System.getenv("ORLU_TRIALS"))
                    ? "ORLU_TRIALS=off disables the trials" : "the trials' process ended early");
        }
        List<Dependences> all = Dependences.read(file);
        return all.get(Math.min(request, all.size() - 1));
    }

    // The launcher passes the trials' process id. If that process is gone, the trials have finished.
    private static void awaitEnd() {
        Progress.show("testing what each tag changes");
        ProcessHandle.of(Long.getLong("orlu.trials", 0)).ifPresent(trials -> trials.onExit().join());
        Progress.end();
    }

    private static Dependences trials(RequestFile request, Set<String> only, String library)
            throws MistakeException, ErrnoException {
        boolean isSized = !request.needsPhoto() || request.frames().width() > 0;
        Picture photo = isSized ? null : FrameSynthesis.load(request.photo());
        FrameSize size = photo == null ? FrameSize.of(request, List.of())
                : new FrameSynthesis(request.frames(), false).size(request.place(), photo);
        return Trials.of(request, size, only, library);
    }
}
