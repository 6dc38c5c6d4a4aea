package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.run.ImageResults;

/**
 * The data of a run's views.
 *
 * @param dependences the tags that parameters depend on; null if not requested
 * @param page        a line that names the run's HTML page; empty if no page was written
 * @param crash       the crash report; empty without a crash
 */
public record RunReport(
        Run run, ImageResults images, Verdict verdict, Dependences dependences, String page, String crash) {
    public RunReport withPage(String line) {
        return new RunReport(run, images, verdict, dependences, line, crash);
    }
}
