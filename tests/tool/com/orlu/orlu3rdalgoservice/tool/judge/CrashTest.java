package com.orlu.orlu3rdalgoservice.tool.judge;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertTrue;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.List;

import org.junit.Test;

/** Tests what Crash derives from the events, the exit status and the VM's crash report of a process. */
public final class CrashTest {
    private static final String LOAD = "begin 1 load 'path': '/a.so'\nend 1 load\n";

    /** Parses one event per line: "begin N OP" or "end N OP", optionally followed by further fields. */
    private static RecordedEvents events(String text) {
        RecordedEvents events = new RecordedEvents();
        text.lines().forEach(line -> {
            String[] words = line.split(" ", 4);
            String event = "{'event': '%s', 'n': %s, 'op': '%s'%s}".formatted(
                    words[0], words[1], words[2], words.length > 3 ? ", " + words[3] : "");
            try {
                events.add(List.of(Json.parse("f", 1, event.replace('\'', '"'))));
            } catch (MistakeException e) {
                throw new AssertionError(e);
            }
        });
        return events;
    }

    @Test
    public void namesTheOperation() {
        String report = "# A fatal error\n#  SIGBUS (0x7) at pc=0x00\n# C  [liba.so+0x123]  f+0x3\n";
        String ended = "the algorithm library /a.so ended the process by ";
        Object[][] rows = {
            {LOAD + "begin 2 process 'reqId': 7", 139, "",
                ended + "signal 11 (SIGSEGV) in process of request 7"},
            {LOAD + "begin 2 process 'reqId': 7", 134, report,
                ended + "signal 7 (SIGBUS at liba.so+0x123) in process of request 7"},
            {LOAD + "begin 2 process 'reqId': 7", 3, "",
                ended + "exit 3 in process of request 7"},
            {LOAD + "begin 2 process 'reqId': 7\nbegin 3 setValue 'section': 's', 'key': 'k'", 136, "",
                ended + "signal 8 (SIGFPE) in setValue of s/k"},
            {LOAD + "begin 2 init", 132, "", ended + "signal 4 (SIGILL) in init"},
            {LOAD + "begin 2 init\nend 2 init", 193, "",
                ended + "signal 65 outside of any operation; the last operation was init"},
            {LOAD + "begin 2 init\nend 2 init 'thrown': 'int', 'what': '5'", 134, "",
                ended + "signal 6 (SIGABRT) after init threw int: 5"},
            {LOAD + "begin 2 process 'reqId': 7", 130, "",
                "stopped by signal 2 (SIGINT), with process of request 7 still running"},
            {LOAD, 143, "", "stopped by signal 15 (SIGTERM)"},
            {LOAD, 128, "", ended + "exit 128 outside of any operation; the last operation was load"},
            {"", 1, "", "the process ended by exit 1 before an algorithm library was open"},
        };
        for (Object[] row : rows) {
            Crash crash = new Crash(events((String) row[0]), (int) row[1], (String) row[2]);
            assertEquals(row[3], crash.reason());
        }
    }

    @Test
    public void detectsUnusableLibraries() {
        Object[][] rows = {
            {"begin 1 load", Verdict.UNUSABLE}, {LOAD + "begin 2 entry", Verdict.UNUSABLE},
            {LOAD + "begin 2 createClient", Verdict.UNUSABLE}, {LOAD + "begin 2 init", Verdict.UNUSABLE},
            {LOAD + "begin 2 process", Verdict.FAILED}, {LOAD + "begin 2 destroy", Verdict.FAILED},
            {LOAD, Verdict.FAILED},
            // The innermost of several open operations determines the status.
            {LOAD + "begin 2 init\nbegin 3 setValue", Verdict.FAILED},
        };
        for (Object[] row : rows) {
            assertEquals((String) row[0], row[1], new Crash(events((String) row[0]), 139, "").status());
        }
    }

    @Test
    public void reportsTheLastEvents() {
        StringBuilder lines = new StringBuilder(LOAD);
        for (int n = 2; n < 50; ++n) {
            lines.append("begin ").append(n).append(" visit 'section': 's', 'key': 'k'\n");
        }
        String report = new Crash(events(lines.toString()), 139, "the VM's").report();
        String last = report.substring(report.indexOf("\nThe last events:\n"));
        assertEquals("the last 40 events", 40, last.lines().filter(line -> line.startsWith("{")).count());
        assertEquals("all operations in progress, and the last events", 48 + 40,
                report.lines().filter(line -> line.startsWith("{")).count());
        assertTrue(report, report.endsWith("the VM's"));
        assertFalse(last, last.contains("\"n\":9,"));
    }
}
