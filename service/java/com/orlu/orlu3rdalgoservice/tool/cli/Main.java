package com.orlu.orlu3rdalgoservice.tool.cli;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.IOException;
import java.util.List;
import java.util.Locale;

/** The command behind ./run. Exits with one of Verdict's statuses. */
public final class Main {
    private Main() {
    }

    /** Runs the command line. */
    public static void main(String[] arguments) {
        // The locale must not change how numbers are printed.
        Locale.setDefault(Locale.ROOT);
        String trialLibrary = System.getProperty("orlu.trial.library");
        int status = trialLibrary == null ? status(arguments) : trials(arguments, trialLibrary);
        if (trialLibrary == null) {
            WorkFolder.markFinished();
        }
        // Threads of the algorithm library may still be attached and would keep the VM alive.
        System.exit(status);
    }

    private static int trials(String[] arguments, String library) {
        try {
            return TrialSession.run(arguments, library);
        } catch (IOException e) {
            return failed("can't read or write " + Printable.message(e));
        }
    }

    /** Runs the command line in this VM and returns its status. */
    public static int status(String[] arguments) {
        try {
            Subcommand command = Commands.parse(arguments);
            if (command == null) {
                return Verdict.OK;
            }
            String died = System.getProperty("orlu.died");
            return died == null ? command.run() : command.afterDeath(Integer.parseInt(died));
        } catch (IllegalArgumentException | MistakeException e) {
            System.err.println(Printable.error(e));
            return Verdict.REFUSED;
        } catch (IOException e) {
            return failed("can't read or write " + Printable.message(e));
        } catch (OutOfMemoryError e) {
            return failed("out of memory: the frames are too many or too large");
        } catch (ErrnoException | IllegalStateException | UnsatisfiedLinkError e) {
            return failed(Printable.message(e));
        }
    }

    private static int failed(String problem) {
        System.err.println("run: error: " + problem);
        System.out.println(new Verdict(Verdict.FAILED, List.of(problem)).line());
        return Verdict.FAILED;
    }
}
