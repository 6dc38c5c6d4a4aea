package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.Dependences;
import com.orlu.orlu3rdalgoservice.tool.model.Run;
import com.orlu.orlu3rdalgoservice.tool.run.ImageResults;

/**
 * What the views show of a run.
 *
 * @param dependences which tags the parameters depend on; null if nobody asked
 * @param page        a line on the page that shows all this, else empty
 * @param crash       what is known of the end of the process, if that came first, else empty
 */
public record RunReport(
        Run run, ImageResults images, Verdict verdict, Dependences dependences, String page, String crash) {
    public RunReport withPage(String line) {
        return new RunReport(run, images, verdict, dependences, line, crash);
    }
}
