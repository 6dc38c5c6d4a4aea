package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.model.StageTime;
import com.orlu.orlu3rdalgoservice.tool.text.TextLayout;
import com.orlu.orlu3rdalgoservice.tool.text.TextTable;

import java.util.List;

/** Prints the time and the memory of each stage of a run. */
public final class StageTable {
    private static final double KIBI = 1024;

    private StageTable() {
    }

    public static void print(List<StageTime> stages, TextLayout to) {
        TextTable table = new TextTable(
                List.of("stage", "ms", "thread", "faults", "heap KiB", "passed KiB"));
        stages.forEach(stage -> add(table, stage.stage(), stage.milliseconds(), stage.thread(),
                stage.waits(), stage.faults(), stage.allocated(), stage.passed()));
        add(table, "whole", StageTime.wholeMilliseconds(stages), "", "",
                stages.stream().mapToLong(StageTime::faults).sum(),
                stages.stream().mapToLong(stage -> Math.max(0, stage.allocated())).sum(),
                stages.stream().mapToLong(StageTime::passed).sum());
        table.print(to);
        to.printNotes();
    }

    private static void add(TextTable table, String stage, double milliseconds, String thread, String waits,
            long faults, long allocated, long passed) {
        table.add(List.of(stage, "%.2f".formatted(milliseconds), thread, Long.toString(faults),
                allocated < 0 ? "" : "%.0f".formatted(allocated / KIBI), "%.1f".formatted(passed / KIBI)),
                waits.isEmpty() ? List.of() : List.of("Java waits for " + waits));
    }
}
