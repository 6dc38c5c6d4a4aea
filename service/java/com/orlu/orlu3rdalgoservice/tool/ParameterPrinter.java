package com.orlu.orlu3rdalgoservice.tool;

import java.io.PrintStream;
import java.util.List;

/** Prints every parameter in the order in which it was handed over. */
final class ParameterPrinter {
    private ParameterPrinter() {
    }

    static void print(List<Parameter> parameters, PrintStream to) {
        int sectionWidth = parameters.stream().mapToInt(parameter -> parameter.section().length()).max().orElse(0);
        int keyWidth = parameters.stream().mapToInt(parameter -> parameter.key().length()).max().orElse(0);
        String row = "  %-" + Math.max(1, sectionWidth) + "s  %-" + Math.max(1, keyWidth) + "s  %-15s  %s%n";
        for (Parameter parameter : parameters) {
            ParameterType type = ParameterTypes.of(parameter.section(), parameter.key());
            to.printf(row, parameter.section(), parameter.key(), type.text(),
                    ParameterFormatter.format(type, parameter.bytes()));
        }
        to.println();
    }
}
