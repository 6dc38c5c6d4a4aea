package com.orlu.orlu3rdalgoservice.tool.compare;

/**
 * One difference between two runs.
 *
 * @param text      one human-readable line
 * @param parameter "section/key" of the parameter, Dependences.ALGORITHMS for the algorithm list, else ""
 */
public record Difference(String text, String parameter) {
    /** Returns whether tags can cause the difference. */
    public boolean canComeFromTags() {
        return !parameter.isEmpty();
    }
}
