package com.orlu.orlu3rdalgoservice.tool.compare;

/**
 * One difference between two runs.
 *
 * @param text      the line for people
 * @param parameter "section/key" of the parameter that differs, Dependences.ALGORITHMS for the algorithm
 *                  list, "" for anything else
 */
public record Difference(String text, String parameter) {
    /** Whether tags can cause the difference. */
    public boolean canComeFromTags() {
        return !parameter.isEmpty();
    }
}
