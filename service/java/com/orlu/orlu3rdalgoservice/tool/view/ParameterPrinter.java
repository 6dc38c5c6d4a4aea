package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.model.Handover;
import com.orlu.orlu3rdalgoservice.tool.model.Parameter;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterFormatter;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterType;
import com.orlu.orlu3rdalgoservice.tool.tags.ParameterTypes;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;

import java.io.PrintStream;
import java.util.ArrayList;
import java.util.List;

/** Prints all writes of parameters in order, and marks each write whose value a later write replaces. */
public final class ParameterPrinter {
    private static final int KEY_WIDTH = 40;
    private static final String REPLACED = "~ ";

    private ParameterPrinter() {
    }

    /** Prints the parameters, in lines of at most 80 columns unless `wide` is set. */
    public static void print(Handover handover, PrintStream to, boolean wide) {
        TextLayout lines = new TextLayout(to, wide);
        List<Parameter> parameters = handover.parameters();
        List<String> names = new ArrayList<>();
        for (Parameter parameter : parameters) {
            names.add(wide ? parameter.fullName() : parameter.name());
        }
        int longest = names.stream().mapToInt(String::length).max().orElse(1);
        String row = "%s%-" + (wide ? longest : Math.min(longest, KEY_WIDTH)) + "s  %-9s  %s";
        boolean anyReplaced = false;
        for (int i = 0; i < parameters.size(); ++i) {
            Parameter parameter = parameters.get(i);
            ParameterType type = ParameterTypes.of(parameter.section(), parameter.key());
            boolean isReplaced = handover.isReplaced(i);
            anyReplaced |= isReplaced;
            lines.plain(row.formatted(isReplaced ? REPLACED : "  ", names.get(i), type.text(),
                    ParameterFormatter.format(type, parameter.bytes())));
        }
        if (anyReplaced) {
            lines.plain("  (" + REPLACED.strip() + " a later line sets the same key)");
        }
        lines.printNotes();
    }
}
