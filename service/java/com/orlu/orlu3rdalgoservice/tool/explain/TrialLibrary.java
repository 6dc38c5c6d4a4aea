package com.orlu.orlu3rdalgoservice.tool.explain;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.IntStream;

/** The algorithm library for trials. This class and the native library must load it from the same file. */
final class TrialLibrary {
    /** Number of parts of a write: section, key and value. */
    private static final int PARTS = 3;

    private TrialLibrary() {
    }

    /** A write of a parameter (name "section/key") or of the algorithm list (name "algorithms"). */
    record Write(String name, byte[] value) {
    }

    // See host/trial/trial_algo.cpp for the format.
    private static native byte[] take();

    /** Loads `file`, which the native library must also find under the algorithm library's name. */
    static void load(String file) {
        System.load(file);
    }

    /** Returns the record of the writes since the last call, in order. */
    static byte[] takeRecord() {
        byte[] record = take();
        if (record == null) {
            throw new OutOfMemoryError("no memory for a trial's record");
        }
        return record;
    }

    /** Returns the offset of each write in a record, then the record's size. */
    static int[] starts(byte[] record) {
        IntStream.Builder starts = IntStream.builder();
        ByteBuffer bytes = ByteBuffer.wrap(record).order(ByteOrder.nativeOrder());
        while (bytes.hasRemaining()) {
            starts.add(bytes.position());
            for (int part = 0; part < PARTS; ++part) {
                int size = bytes.getInt();
                bytes.position(bytes.position() + size);
            }
        }
        return starts.add(record.length).build().toArray();
    }

    /** Returns the writes in a range of a record. */
    static List<Write> parse(byte[] record, int from, int to) {
        ByteBuffer bytes = ByteBuffer.wrap(record, from, to - from).order(ByteOrder.nativeOrder());
        List<Write> writes = new ArrayList<>();
        while (bytes.hasRemaining()) {
            String section = new String(next(bytes), StandardCharsets.UTF_8);
            String key = new String(next(bytes), StandardCharsets.UTF_8);
            writes.add(new Write(section.isEmpty() ? key : section + "/" + key, next(bytes)));
        }
        return writes;
    }

    private static byte[] next(ByteBuffer bytes) {
        byte[] part = new byte[bytes.getInt()];
        bytes.get(part);
        return part;
    }
}
