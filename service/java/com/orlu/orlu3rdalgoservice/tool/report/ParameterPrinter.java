package com.orlu.orlu3rdalgoservice.tool.report;

import java.io.PrintStream;
import java.util.List;
import java.util.function.Function;

/** Prints every parameter in the order in which it was handed over. */
public final class ParameterPrinter {
    private ParameterPrinter() {
    }

    public static void print(List<Parameter> parameters, PrintStream to) {
        String row = "  %-" + width(parameters, Parameter::section) + "s  %-"
                + width(parameters, Parameter::key) + "s  %-15s  %s%n";
        for (Parameter parameter : parameters) {
            ParameterType type = ParameterTypes.of(parameter.section(), parameter.key());
            to.printf(row, parameter.section(), parameter.key(), type.text(),
                    ParameterFormatter.format(type, parameter.bytes()));
        }
        to.println();
    }

    private static int width(List<Parameter> parameters, Function<Parameter, String> column) {
        return parameters.stream().map(column).mapToInt(String::length).max().orElse(1);
    }
}
