package com.orlu.orlu3rdalgoservice.tool.run;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.IOException;
import java.nio.ByteBuffer;
import java.nio.channels.FileChannel;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardOpenOption;
import java.util.Map;

/** Appends events to the probe's file, each as one line in one write. Thread-safe. */
public final class EventLog {
    /** The environment variable that names the file. */
    public static final String VARIABLE = "ORLU_EVENTS";

    private static final ThreadLocal<ThreadName> THREAD = ThreadLocal.withInitial(ThreadName::ofThisOne);

    private static EventLog sOfEnvironment;

    private final FileChannel mFile;

    private EventLog(FileChannel file) {
        mFile = file;
    }

    // A thread's kernel id, as in the probe's events, and its name.
    private record ThreadName(int tid, String name) {
        static ThreadName ofThisOne() {
            try {
                Path thread = Path.of("/proc/thread-self");
                int tid = Integer.parseInt(Files.readSymbolicLink(thread).getFileName().toString());
                return new ThreadName(tid, Files.readString(thread.resolve("comm")).strip());
            } catch (IOException e) {
                // Without /proc the id is unknown. Throws nothing, because native code may be the caller.
                return new ThreadName(0, Thread.currentThread().getName());
            }
        }
    }

    /** The kernel's id of the calling thread; 0 if unknown. */
    public static int thisThread() {
        return THREAD.get().tid();
    }

    /** The log in the file that VARIABLE names; null if the variable is unset or empty. */
    public static synchronized EventLog ofEnvironment() throws IOException {
        String path = System.getenv(VARIABLE);
        if (sOfEnvironment == null && path != null && !path.isEmpty()) {
            sOfEnvironment = new EventLog(FileChannel.open(Path.of(path), StandardOpenOption.WRITE,
                    StandardOpenOption.CREATE, StandardOpenOption.APPEND));
        }
        return sOfEnvironment;
    }

    /**
     * Creates an event with the present time, this thread, and the fields: names and values in turn. Pass the
     * event to write().
     */
    public Map<String, Object> begin(String event, Object... fields) {
        ThreadName thread = THREAD.get();
        Map<String, Object> line = JsonWriter.object("t", System.nanoTime(), "tid", thread.tid(), "thread",
                thread.name(), "event", event);
        line.putAll(JsonWriter.object(fields));
        return line;
    }

    /** Writes the event. Prints failures instead of throwing, because native code may be the caller. */
    public void write(Map<String, Object> line) {
        try {
            mFile.write(ByteBuffer.wrap((JsonWriter.line(line) + '\n').getBytes(StandardCharsets.UTF_8)));
        } catch (IOException e) {
            System.err.println("run: error: events: " + Printable.message(e));
        }
    }
}
