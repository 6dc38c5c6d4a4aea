package com.orlu.orlu3rdalgoservice.tool;

import java.util.ArrayList;
import java.util.List;

/** What the algorithm library traced of one request. */
final class Trace {
    /** Values handed over, in order. */
    final List<Parameter> parameters = new ArrayList<>();
    /** The algorithm list as it was handed over, null when there was no algorithm pass. */
    List<String> algorithms;
    /** What came of it, null when nothing was reported. */
    AlgorithmPass pass;
}
