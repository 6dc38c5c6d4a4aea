package com.orlu.orlu3rdalgoservice.tool.view;

import static org.junit.Assert.assertEquals;

import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;

import org.junit.Test;

/** Tests a trace file's arrows, and the order and bounds of its slices. */
public final class TraceFileTest {
    private static String text(Map<String, Object> event) {
        String phase = (String) event.get("ph");
        String what = phase + " " + event.get("name") + " " + event.get("tid");
        return switch (phase) {
            case "X" -> what + " " + event.get("ts") + "+" + event.get("dur");
            case "M" -> what + " " + ((Map<?, ?>) event.get("args")).values().iterator().next();
            default -> what + " #" + event.get("id") + " " + event.get("ts")
                    + (event.containsKey("bp") ? " e" : "");
        };
    }

    private static String lines(TraceFile file) {
        return file.events().stream().skip(1).map(TraceFileTest::text).collect(Collectors.joining("; "));
    }

    @Test
    public void nestsSlices() {
        // {slices of one lane as "name start end", expected events}. The times of slices are in nanoseconds.
        // The times of events are in microseconds and count from the start of the trace, 1000 ns.
        String[][] rows = {
            {"a 1000 3500", "X a 7 0.0+2.5"},
            {"b 2000 3000, a 1000 4000", "X a 7 0.0+3.0; X b 7 1.0+1.0"},
            {"a 1000 3000, b 2000 4000", "X a 7 0.0+2.0; X b 7 1.0+1.0"},
            {"a 1000 2000, b 2000 4000", "X a 7 0.0+1.0; X b 7 1.0+2.0"},
            {"b 1000 2000, a 1000 4000, c 1500 3000", "X a 7 0.0+3.0; X b 7 0.0+1.0; X c 7 0.5+0.5"},
            {"a 1000 2000, b 1200 1800, c 1900 2500, d 2000 3000",
                "X a 7 0.0+1.0; X b 7 0.2+0.6; X c 7 0.9+0.1; X d 7 1.0+1.0"},
            {"a 1000 1000", "X a 7 0.0+0.0"},
        };
        for (String[] row : rows) {
            TraceFile file = new TraceFile(5, 1000, Long.MAX_VALUE);
            for (String slice : row[0].split(", ")) {
                String[] words = slice.split(" ");
                file.add(new TraceFile.Slice(words[0], "c", 7, Long.parseLong(words[1]),
                        Long.parseLong(words[2]), Map.of()));
            }
            assertEquals(row[0], row[1], lines(file));
        }
    }

    @Test
    public void drawsArrows() {
        TraceFile file = new TraceFile(5, 1_000_000_000_000L, Long.MAX_VALUE);
        file.nameLane(9, "main", 2);
        file.addArrow(-3, List.of(new TraceFile.Point(7, 1_000_000_000_001L),
                new TraceFile.Point(8, 1_000_000_002_000L), new TraceFile.Point(9, 1_000_001_000_000L)));
        file.addArrow(4, List.of(new TraceFile.Point(7, 1_000_000_000_000L),
                new TraceFile.Point(9, 1_000_000_001_000L)));
        assertEquals("M thread_name 9 main; M thread_sort_index 9 2; s request 7 #-3 0.001; "
                + "t request 8 #-3 2.0; f request 9 #-3 1000.0 e; s request 7 #4 0.0; f request 9 #4 1.0 e",
                lines(file));
    }
}
