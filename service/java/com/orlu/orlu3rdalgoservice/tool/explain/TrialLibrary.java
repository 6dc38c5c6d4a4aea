package com.orlu.orlu3rdalgoservice.tool.explain;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.List;

/** The algorithm library for trials. The native library must have opened it before any call. */
final class TrialLibrary {
    private TrialLibrary() {
    }

    /** One parameter written, named "section/key". */
    record Write(String name, byte[] value) {
    }

    // See host/trial/trial_algo.cpp for the format.
    private static native byte[] take();

    /** Loads the file that the native library finds under the algorithm library's name. */
    static void load(String file) {
        System.load(file);
    }

    /** Returns the writes since the last call, in order. */
    static byte[] takeRecord() {
        byte[] record = take();
        if (record == null) {
            throw new OutOfMemoryError("no memory for a trial's record");
        }
        return record;
    }

    static List<Write> parse(byte[] record) {
        ByteBuffer bytes = ByteBuffer.wrap(record).order(ByteOrder.nativeOrder());
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
