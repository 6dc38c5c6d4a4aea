package com.orlu.orlu3rdalgoservice.tool.report;

import java.util.ArrayList;
import java.util.List;

/** What the algorithm library traced of one request. */
public final class Trace {
    /** Values handed over, in order. */
    public final List<Parameter> parameters = new ArrayList<>();
    /** The algorithm list as it was handed over, null when there was no algorithm pass. */
    List<String> algorithms;
    /** What came of it, null when nothing was reported. */
    AlgorithmPass pass;
}
