package com.orlu.orlu3rdalgoservice.record;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.Orlu3rdAlgoService;

import java.io.File;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.Comparator;
import java.util.HashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.function.Supplier;
import java.util.logging.Logger;

/**
 * Records each request in its own folder. A failure is logged and never affects the request. Thread-safe
 * except for the setters.
 */
public final class RequestRecorder {
    /** The property (see Setting) that enables recording and names the folder of the recordings. */
    public static final String FOLDER_PROPERTY = "orlu.record";
    /** The property with the number of recordings to keep. Older ones are removed. */
    public static final String COUNT_PROPERTY = "orlu.record.count";
    /** The property with the size limit of a recording in bytes. Pixels that don't fit are left out. */
    public static final String BYTES_PROPERTY = "orlu.record.bytes";

    private static final int USUAL_COUNT = 16;
    private static final long USUAL_BYTES = 1L << 30;

    /** Pixels to record: none, those of Java's images, or those and the pixels that the probe stored. */
    public enum Pixels { NONE, OF_JAVA, ALL }

    /** Limit of recordings that wait for full-async results. Above the limit, the oldest is closed. */
    private static final int MOST_OPEN = 16;

    private final File mFolder;
    private final int mCount;
    private final long mBytes;
    private final Map<Long, CaptureResultComposition> mClients = new HashMap<>();
    private final List<Recording> mOpen = new ArrayList<>();

    private Supplier<Map<String, String>> mProperties = Collections::emptyMap;
    private String mAbout = "";
    private Pixels mPixels = Pixels.ALL;
    private int mMade;

    /** Creates a recorder that writes into this folder, which is created if missing. */
    public RequestRecorder(File folder, int count, long bytes) {
        mFolder = folder;
        mCount = Math.max(1, count);
        mBytes = bytes;
    }

    /** Returns a recorder with the settings in the properties; null if FOLDER_PROPERTY is empty. */
    public static RequestRecorder ofProperties() {
        String folder = Setting.get(FOLDER_PROPERTY);
        if (folder.isEmpty()) {
            return null;
        }
        long count = Math.min(Integer.MAX_VALUE, Setting.number(COUNT_PROPERTY, USUAL_COUNT));
        return new RequestRecorder(new File(folder), (int) count, Setting.number(BYTES_PROPERTY, USUAL_BYTES));
    }

    /** Sets the source of the system properties that the native library reads. */
    public void setProperties(Supplier<Map<String, String>> properties) {
        mProperties = properties;
    }

    /** Sets the description of further recordings; "" for none. */
    public void setAbout(String about) {
        mAbout = about;
    }

    /** Sets which pixels further recordings include. */
    public void setPixels(Pixels pixels) {
        mPixels = pixels;
    }

    /** Stores the values that a client was created from. Call this after createNativeClient. */
    public synchronized void addClient(long inst, CaptureResultComposition param) {
        mClients.put(inst, param);
    }

    /** Forgets a destroyed client. */
    public synchronized void removeClient(long inst) {
        mClients.remove(inst);
    }

    /** Calls {@link Orlu3rdAlgoService#processImage} and records it. */
    public int processImage(Orlu3rdAlgoService service, long inst, Object request, Object inputs,
            Object outputs, Object compositions) {
        Recording recording = begin(service, inst, request, inputs, outputs, compositions);
        return recording.processImage(service, inst, request, inputs, outputs, compositions);
    }

    /** Calls {@link Orlu3rdAlgoService#processImageUpdateResult} and adds the call to the recording. */
    public int processImageUpdateResult(Orlu3rdAlgoService service, long inst, Object request, Object inputs,
            Object outputs, Object compositions) {
        Recording recording = take(inst, request);
        if (recording == null) {
            return service.processImageUpdateResult(inst, request, inputs, outputs, compositions);
        }
        return recording.processImageUpdateResult(service, inst, request, inputs, outputs, compositions);
    }

    /** Records everything known before the request runs. Never throws: failures are logged and recorded. */
    public synchronized Recording begin(Orlu3rdAlgoService service, long inst, Object request, Object inputs,
            Object outputs, Object compositions) {
        Recording recording = new Recording(this, inst, request);
        recording.guard(() -> {
            makeWay();
            recording.open(new RecordFolder(nextFolder(request), mBytes, mPixels));
            recording.before(service, mAbout, mClients.get(inst), mProperties.get(), inputs, outputs,
                    compositions);
        });
        if (recording.isFullAsync()) {
            mOpen.add(recording);
            if (mOpen.size() > MOST_OPEN) {
                mOpen.remove(0).close();
            }
        }
        return recording;
    }

    private synchronized Recording take(long inst, Object request) {
        for (Recording recording : mOpen) {
            if (recording.isOf(inst, request)) {
                mOpen.remove(recording);
                return recording;
            }
        }
        return null;
    }

    synchronized void forget(Recording recording) {
        mOpen.remove(recording);
    }

    private File nextFolder(Object request) {
        String id = Recording.idOf(request);
        File folder;
        do {
            ++mMade;
            folder = new File(mFolder, String.format(Locale.ROOT, "%06d-request-%s", mMade, id));
        } while (folder.exists() || numberTaken(mMade));
        return folder;
    }

    private boolean numberTaken(int number) {
        String prefix = String.format(Locale.ROOT, "%06d-", number);
        return Arrays.stream(recordings()).anyMatch(folder -> folder.getName().startsWith(prefix));
    }

    // Returns the recordings, sorted by number. Ignores other folders, which must not be removed, and
    // numbers of 10 or more digits, which may exceed an int.
    private File[] recordings() {
        File[] folders = mFolder.listFiles((parent, name) -> name.matches("\\d{6,9}-request-.*"));
        if (folders == null) {
            return new File[0];
        }
        Arrays.sort(folders, Comparator.comparingInt(RequestRecorder::number));
        return folders;
    }

    private static int number(File recording) {
        return Integer.parseInt(recording.getName().substring(0, recording.getName().indexOf('-')));
    }

    private void makeWay() {
        File[] old = recordings();
        if (old.length > 0) {
            // Numbering continues after the newest folder, so that numbers sort by time even after a restart.
            mMade = Math.max(mMade, number(old[old.length - 1]));
        }
        for (int i = 0; i <= old.length - mCount; ++i) {
            File[] files = old[i].listFiles();
            for (File file : files == null ? new File[0] : files) {
                delete(file);
            }
            delete(old[i]);
        }
    }

    private static void delete(File file) {
        if (!file.delete()) {
            warn("can't remove " + file);
        }
    }

    static void warn(String what) {
        Logger.getLogger("RequestRecorder").warning(what);
    }
}
