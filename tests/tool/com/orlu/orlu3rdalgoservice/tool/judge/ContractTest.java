package com.orlu.orlu3rdalgoservice.tool.judge;

import static org.junit.Assert.assertEquals;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.util.ArrayList;
import java.util.List;
import java.util.stream.Collectors;

import org.junit.Test;

/** Tests that Contract finds the breaches in recorded calls. */
public final class ContractTest {
    private static final String CLIENT = "begin 1 createClient\nend 1 createClient 'result': '0x100'\n";
    private static final String BLOCK =
            CLIENT + "begin 2 createMetadata 'kind': 0\nend 2 createMetadata 'result': '0x1000'\n";
    private static final String RECORD =
            "'client': '0x100', 'nativeReq': '0x7', 'cookie': '0xc', 'metadata': [{'block': '0x1000'}]";
    private static final String SUBMITTED =
            BLOCK + "begin 3 process " + RECORD + "\nend 3 process 'result': 0\n";
    private static final String CALLED =
            "callback 'cookie': '0xc', 'size': 26, 'name': 'shotCb', 'nativeReq': '0x7'\n";
    private static final String STREAM = "callback 'cookie': '0xc', 'name': 'lightStreamCb', 'size': ";
    private static final String ENDED =
            "begin 9 destroyClient 'client': '0x100'\nend 9 destroyClient 'result': 0\n";
    private static final String VALUE =
            "'block': '0x1000', 'section': 'orlu.algo.control', 'key': 'frame_number'";
    private static final String DOWNLOAD = "begin 6 paramSystemDownloadToAlgo 'tid': 1, 'block': '0x1000'\n";
    private static final String VISIT =
            "begin 7 visit 'tid': %d, 'of': 6, 'section': 'orlu.algo.control', 'key': '%s', 'size': %d\n";

    /** Parses events, one per line: "EVENT N OP", and further fields. */
    private static List<Event> events(String text) {
        List<Event> events = new ArrayList<>();
        text.lines().forEach(line -> {
            String[] words = line.split(" ", 4);
            String event = "{'event': '%s', 'n': %s, 'op': '%s'%s}".formatted(
                    words[0], words[1], words[2], words.length > 3 ? ", " + words[3] : "");
            try {
                events.add(new Event(Json.parse("f", 1, event.replace('\'', '"'))));
            } catch (MistakeException e) {
                throw new AssertionError(e);
            }
        });
        return events;
    }

    private static String breaches(List<Breach> breaches) {
        return breaches.stream().map(breach -> breach.by() + " " + breach.kind() + " "
                + breach.event().number("n") + (breach.count() == 1 ? "" : " x" + breach.count()))
                .collect(Collectors.joining(", "));
    }

    @Test
    public void findsEachBreach() {
        String[][] rows = {
            {"begin 1 createClient\nend 1 createClient 'result': '0x0'", "LIBRARY null-client 1"},
            {"begin 1 createClient\nend 1 createClient 'thrown': 'int'", ""},
            {CLIENT + "begin 2 createClient\nend 2 createClient 'result': '0x100'", "LIBRARY same-client 2"},
            {"begin 1 createMetadata\nend 1 createMetadata 'result': '0x0'", "LIBRARY null-block 1"},
            {BLOCK + "begin 3 createMetadata\nend 3 createMetadata 'result': '0x1000'",
                "LIBRARY same-block 3"},
            {"begin 1 flush 'client': '0x100'", "SERVICE dead-client 1"},
            {"begin 1 flush 'client': '0x0'", ""},
            {CLIENT + ENDED + "begin 10 flush 'client': '0x100'", "SERVICE dead-client 10"},
            {BLOCK + "begin 3 getSize 'block': '0x0'", "SERVICE null-block 3"},
            {BLOCK + "begin 3 getSize 'block': '0x1001'", "SERVICE dead-block 3"},
            {BLOCK + "begin 3 destroyMetadata 'block': '0x1000'\nbegin 4 getSize 'block': '0x1000'\n"
                    + "begin 5 destroyMetadata 'block': '0x1000'\nbegin 6 getSize 'block': '0x1000'",
                "SERVICE dead-block 4 x2, SERVICE dead-block 5"},
            {CLIENT + "begin 3 process " + RECORD, "SERVICE dead-block 3"},
            {BLOCK + "begin 3 setValue " + VALUE + ", 'size': 8, 'bytes': '00'", ""},
            {BLOCK + "begin 3 setValue " + VALUE + ", 'size': 4, 'bytes': '00'", "SERVICE value-size 3"},
            {BLOCK + "begin 3 getValue " + VALUE + ", 'size': 9", "SERVICE value-size 3"},
            {BLOCK + "begin 3 getValue " + VALUE
                    + ", 'size': 8, 'tid': 1\nheld 0 none 'size': 8, 'tid': 1", ""},
            {BLOCK + "begin 3 getValue " + VALUE
                    + ", 'size': 8, 'tid': 1\nheld 0 none 'size': -1, 'tid': 1", ""},
            {BLOCK + "begin 3 getValue " + VALUE + ", 'size': 8, 'tid': 1\nheld 0 none 'size': 4, 'tid': 1",
                "LIBRARY value-size 3"},
            {BLOCK + "begin 3 setValue " + VALUE + ", 'size': 8", "SERVICE null-data 3"},
            {BLOCK + "begin 3 getValue 'block': '0x1000', 'section': 'a', 'key': ''", "SERVICE null-key 3"},
            {BLOCK + "begin 3 getValue 'block': '0x1000', 'section': 'a', 'key': 'unknown', 'size': 3", ""},
            {BLOCK + DOWNLOAD + VISIT.formatted(1, "frame_number", 8), ""},
            {BLOCK + DOWNLOAD + VISIT.formatted(1, "frame_number", 4), "LIBRARY value-size 7"},
            {BLOCK + DOWNLOAD + VISIT.formatted(1, "", 4), "LIBRARY null-key 7"},
            {BLOCK + DOWNLOAD + VISIT.formatted(2, "frame_number", 8), "LIBRARY late-visit 7"},
            {BLOCK + DOWNLOAD + "end 6 paramSystemDownloadToAlgo 'result': 0\n"
                    + VISIT.formatted(1, "frame_number", 8), "LIBRARY late-visit 7"},
            {SUBMITTED + "begin 4 " + CALLED, ""},
            {SUBMITTED + "begin 4 " + CALLED + "begin 5 " + CALLED + "begin 6 " + CALLED,
                "LIBRARY finished-request 5 x2"},
            {SUBMITTED + "begin 4 " + CALLED.replace("0x7", "0x8"), "LIBRARY unknown-request 4"},
            {SUBMITTED + "begin 4 " + CALLED.replace("0xc", "0xd"), "LIBRARY unknown-request 4"},
            {SUBMITTED + "begin 4 callback 'cookie': '0xc', 'size': 19", "LIBRARY malformed-callback 4"},
            {SUBMITTED + "begin 4 " + CALLED.replace("shotCb", "shotcb"), "LIBRARY callback-name 4"},
            {SUBMITTED + "begin 4 " + STREAM + "80", "LIBRARY light-stream-size 4"},
            {SUBMITTED + "begin 4 " + STREAM + "81", ""},
            {SUBMITTED + ENDED + "begin 10 " + CALLED, "LIBRARY dead-cookie 10"},
            {SUBMITTED + "begin 4 destroyMetadata 'block': '0x1000', 't': 9000000000",
                "SERVICE block-in-use 4"},
            {SUBMITTED + "begin 4 destroyMetadata 'block': '0x1000', 't': 10000000000", ""},
            {SUBMITTED + ENDED + "begin 10 destroyMetadata 'block': '0x1000'", ""},
            {SUBMITTED.replace("'result': 0\n", "'result': -22\n")
                    + "begin 4 destroyMetadata 'block': '0x1000'", ""},
            // The second block is the camera block. The service may destroy it once process has returned,
            // before the callback.
            {BLOCK + "begin 3 process " + RECORD.replace("[{", "[{'block': '0x0'}, {")
                    + "\nbegin 4 destroyMetadata 'block': '0x1000'", "SERVICE block-in-use 4"},
            {SUBMITTED.replace("[{", "[{'block': '0x0'}, {")
                    + "begin 4 destroyMetadata 'block': '0x1000'", ""},
        };
        for (String[] row : rows) {
            assertEquals(row[0], row[1], breaches(new Contract().check(events(row[0]))));
        }
    }

    @Test
    public void allowsReusedAddressesAndLateCallbacks() {
        String[] rows = {
            // Another thread gets the same address before the "end" event of the destroying call.
            BLOCK + "begin 3 destroyMetadata 'block': '0x1000'\nbegin 4 createMetadata\n"
                    + "end 4 createMetadata 'result': '0x1000'\nend 3 destroyMetadata\n"
                    + "begin 5 getSize 'block': '0x1000'\n",
            CLIENT + "begin 2 destroyClient 'client': '0x100'\nbegin 3 createClient\n"
                    + "end 3 createClient 'result': '0x100'\nend 2 destroyClient\n"
                    + "begin 4 flush 'client': '0x100'\n",
            // A callback may arrive during process or destroyClient. The client is usable until destroyClient
            // returns.
            BLOCK + "begin 3 process " + RECORD + "\nbegin 4 " + CALLED + "end 3 process 'result': 0\n"
                    + "begin 5 destroyMetadata 'block': '0x1000'\n",
            SUBMITTED + "begin 4 destroyClient 'client': '0x100'\nbegin 5 " + CALLED
                    + "begin 6 flush 'client': '0x100'\nend 4 destroyClient\n",
            // A request may reuse the id of a finished request, or of a timed-out request that may still call
            // back.
            SUBMITTED + "begin 4 " + CALLED + "begin 5 process " + RECORD
                    + "\nend 5 process 'result': 0\nbegin 6 " + CALLED,
            SUBMITTED + "begin 5 process " + RECORD + "\nend 5 process 'result': 0\nbegin 6 " + CALLED
                    + "begin 7 " + CALLED,
            // Two clients whose requests have the same id.
            SUBMITTED + (SUBMITTED + "begin 4 " + CALLED).replace("0x1", "0x2").replace("0xc", "0xd")
                    + "begin 4 " + CALLED,
            // A second operating-system process continues the events file.
            SUBMITTED + "header 0 none\n" + SUBMITTED + "begin 4 " + CALLED,
        };
        for (String row : rows) {
            assertEquals(row, "", breaches(new Contract().check(events(row))));
        }
    }

    @Test
    public void reportsBreachesSinceTheLastCheck() {
        Contract contract = new Contract();
        assertEquals("", breaches(contract.check(events(SUBMITTED + "begin 4 " + CALLED))));
        assertEquals("LIBRARY finished-request 5", breaches(contract.check(events("begin 5 " + CALLED))));
        assertEquals("LIBRARY finished-request 6", breaches(contract.check(events("begin 6 " + CALLED))));
    }
}
