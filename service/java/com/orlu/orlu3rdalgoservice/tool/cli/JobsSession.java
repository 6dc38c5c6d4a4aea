package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;
import com.orlu.orlu3rdalgoservice.tool.request.RequestTags;
import com.orlu.orlu3rdalgoservice.tool.run.ChildRun;
import com.orlu.orlu3rdalgoservice.tool.run.SideBySide;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Mistakes;
import com.orlu.orlu3rdalgoservice.tool.view.PageFolder;
import com.orlu.orlu3rdalgoservice.tool.view.Results;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.concurrent.Callable;

import picocli.CommandLine.Model.OptionSpec;

/** Runs the requests of one command line in parallel, each in its own ./run process. */
final class JobsSession {
    /** Options that are not copied to the child processes' command lines. */
    private static final Set<String> OWN = Set.of("--jobs", "--json", "--junit", "--quiet", "--arm");

    private final RunCommand mOptions;
    private final List<Path> mRequests;
    private final Results mResults = new Results("run");
    private int mStatus;

    JobsSession(RunCommand options) {
        mOptions = options;
        mRequests = options.requests();
    }

    /** Prints the processes' output in the order of the requests. Returns the first status that is not ok. */
    int run() throws MistakeException, IOException {
        if (!areRight()) {
            return Verdict.REFUSED;
        }
        mOptions.checkWritten();
        List<Callable<ChildRun>> work = new ArrayList<>();
        for (int i = 0; i < mRequests.size(); ++i) {
            Path request = mRequests.get(i);
            String name = mOptions.names().get(i);
            work.add(() -> child(request, name));
        }
        PageFolder pages = mOptions.written.report == null ? null
                : new PageFolder(mOptions.written.report, mRequests.size());
        SideBySide.run("running requests", mOptions.tried.jobs, work, child -> take(child, pages));
        if (pages != null) {
            pages.writeIndex(mRequests);
        }
        mOptions.written.write(mResults);
        if (mRequests.size() > 1) {
            Session.printOverall(mOptions, mResults, pages);
        }
        return mStatus;
    }

    // Checks the request files: a mistake in any file prevents all runs. The child processes check images.
    private boolean areRight() {
        int wrong = 0;
        for (Path request : mRequests) {
            Mistakes mistakes = new Mistakes(request.toString());
            RequestFile read = RequestFileReader.read(request, mOptions.tried.photo, mistakes);
            if (read == null) {
                mistakes.lines().forEach(System.err::println);
                ++wrong;
            } else {
                RequestTags.set(read, mOptions.tried.tags);
            }
        }
        if (wrong > 0) {
            System.err.println(
                    "run: errors in " + wrong + " of " + mRequests.size() + " files; nothing runs");
        }
        return wrong == 0;
    }

    private ChildRun child(Path request, String name) throws IOException {
        ChildRun child = new ChildRun("job", mOptions.tried.arm, null);
        if (mRequests.size() > 1) {
            child.with(WorkFolder.PAGES, child.file("pages").toString());
        }
        List<String> arguments = new ArrayList<>();
        for (OptionSpec option : mOptions.spec.commandLine().getParseResult().matchedOptions()) {
            if (!OWN.contains(option.longestName())) {
                option.originalStringValues().forEach(value
                        -> arguments.add(option.arity().max() == 0 ? option.longestName()
                                                                   : option.longestName() + "=" + value));
            }
        }
        arguments.addAll(List.of("--json", child.file("json").toString(), "--as", name, request.toString()));
        child.start(arguments);
        return child;
    }

    private void take(ChildRun child, PageFolder pages) throws MistakeException, IOException {
        int index = mResults.size();
        if (index > 0) {
            mOptions.written.text().println();
        }
        String printed = child.printed();
        boolean isAlone = mRequests.size() == 1;
        mOptions.written.text().print(isAlone ? printed.replaceFirst("verdict .*\n$", "") : printed);
        System.err.print(child.errors());
        if (Files.exists(child.file("json"))) {
            mResults.addAll(child.file("json"));
        } else {
            mResults.add(mOptions.names().get(index), new Verdict(child.status(), List.of(
                    "the request did not run")), 0, Map.of());
        }
        if (isAlone) {
            mOptions.written.last().print(printed.replaceFirst("(?s).*(?=verdict )", ""));
        }
        mStatus = mStatus == Verdict.OK ? child.status() : mStatus;
        if (pages != null) {
            pages.addOther(child.file("pages"), mRequests.get(index));
        }
        child.remove();
    }
}
