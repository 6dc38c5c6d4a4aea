package com.orlu.orlu3rdalgoservice.tool.request;

import android.hardware.camera2.impl.CameraMetadataNative;
import android.hardware.camera2.impl.TagTable;
import android.hardware.camera2.impl.TagType;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.tags.AlgorithmNames;
import com.orlu.orlu3rdalgoservice.tool.text.NearestWord;

import java.util.List;
import java.util.Map;
import java.util.TreeMap;

/** Warns about legal but probably unintended content of a request file. */
final class RequestAdvice {
    private static final String ALGORITHMS = "orlu.control.algoType";
    private static final String MODE = "orlu.control.currentModeEx";
    private static final String TIME = "android.sensor.timestamp";
    private static final long HDR_FRAME_BIT = 2;
    private static final long NIGHT_FRAME_BIT = 8;
    /** The properties that the native library reads; an algorithm library may read others. */
    private static final List<String> PROPERTIES = List.of("persist.sys.camera3rd.autotest");

    private final RequestFile mRequest;
    private final List<FramePlan> mFrames;
    private final Json mRoot;

    private RequestAdvice(RequestFile request, Json root) {
        mRequest = request;
        mFrames = request.frames().frames();
        mRoot = root;
    }

    /** Notes warnings about a request that was read from `root`. */
    static void give(RequestFile request, Json root) {
        RequestAdvice advice = new RequestAdvice(request, root);
        advice.onAlgorithms();
        advice.onProperties();
        advice.onCompositions();
        advice.onModes();
        advice.onTimestamps();
        advice.onInputs();
        for (int i = 0; i < advice.mFrames.size(); ++i) {
            int frame = i;
            TagAdvice.give(advice.mFrames.get(i).captureResult(),
                    tag -> advice.field(frame, "captureResult", tag));
        }
    }

    // Returns the field that sets a frame's tag: the frame's own field, else the common field, else "frames".
    private Json field(int frame, String part, String tag) {
        Json frames = mRoot.get("frames");
        List<Json> each = (frames.isList() ? frames : frames.at("each")).elements();
        Json own = frame < each.size() ? each.get(frame).at(part).get(tag) : null;
        Json given = own != null ? own : frames.at("common").at(part).get(tag);
        return given != null ? given : frames;
    }

    private String[] algorithms() {
        Object asked = mFrames.isEmpty() ? null : mFrames.get(0).composition().get(ALGORITHMS);
        return asked instanceof String[] names ? names : new String[0];
    }

    private boolean asksFor(String algorithm) {
        return List.of(algorithms()).contains(algorithm);
    }

    private void onAlgorithms() {
        String[] names = algorithms();
        if (names.length == 0) {
            return;
        }
        List<Json> fields = mRoot.at("algorithms").elements();
        List<String> known = AlgorithmNames.all();
        for (int i = 0; i < names.length; ++i) {
            Json field = i < fields.size() ? fields.get(i) : field(0, "composition", ALGORITHMS);
            String name = names[i];
            if (known.contains(name)) {
                continue;
            }
            String longest = known.stream().filter(name::startsWith).reduce("", (a, b) ->
                    a.length() > b.length() ? a : b);
            field.warn("unknown algorithm " + Json.quoted(name)
                    + (longest.isEmpty() ? NearestWord.question(name, known)
                            : "; treated as " + longest + " because of its prefix"));
        }
    }

    private void onProperties() {
        for (String name : mRequest.properties().keySet()) {
            String nearest = PROPERTIES.contains(name) ? null : NearestWord.of(name, PROPERTIES);
            if (nearest != null) {
                mRoot.at("properties").get(name).warn("the native library does not read this property"
                        + NearestWord.question(name, PROPERTIES));
            }
        }
    }

    // The library can't read a composition's value of the wrong class, and then does not read the capture
    // result's value either.
    private void onCompositions() {
        for (int i = 0; i < mFrames.size(); ++i) {
            for (Map.Entry<String, Object> entry : mFrames.get(i).composition().entrySet()) {
                TagType type = TagTable.typeOf(entry.getKey());
                Class<?> found = entry.getValue().getClass();
                if (type == null) {
                    field(i, "composition", entry.getKey()).warn("no such tag"
                            + NearestWord.question(entry.getKey(), TagTable.names()));
                } else if (found != type.stored()) {
                    field(i, "composition", entry.getKey()).warn("expected " + type.stored().getSimpleName()
                            + " (the tag is " + type + "), found " + found.getSimpleName()
                            + "; the tag is treated as absent");
                }
            }
        }
    }

    private void onModes() {
        // With dualBokeh, frames of two cameras may alternate. The library then uses only every second mode.
        if (asksFor("dualBokeh") || mFrames.isEmpty()) {
            return;
        }
        StringBuilder modes = new StringBuilder();
        for (FramePlan frame : mFrames) {
            long mode = modeOf(frame);
            modes.append((mode & HDR_FRAME_BIT) != 0 ? 'h' : (mode & NIGHT_FRAME_BIT) != 0 ? 'n' : '-');
        }
        long hdr = modes.chars().filter(mode -> mode == 'h').count();
        long night = modes.chars().filter(mode -> mode == 'n').count();
        boolean isLayout = switch (mFrames.size()) {
            case 3 -> asksFor("hdr");
            case 5, 7 -> hdr == mFrames.size() - 1 && night == 1;
            case 9 -> hasNineLayout();
            default -> false;
        };
        if (hdr > 0 && !isLayout) {
            mRoot.get("frames").warn(MODE + " forms no bracket; expected 5 or 7 frames (1 night frame, the "
                    + "others HDR frames), 9 frames (3 night frames, then 6 HDR frames), or 3 frames with "
                    + "the algorithm hdr; found " + hdr + " HDR frames (mode & 2), " + night
                    + " night frames (mode & 8) and " + (mFrames.size() - hdr - night) + " others");
        }
    }

    // Returns whether the first three frames have the night bit, and all later frames the HDR bit. Ignores
    // other bits.
    private boolean hasNineLayout() {
        for (int i = 0; i < mFrames.size(); ++i) {
            if ((modeOf(mFrames.get(i)) & (i < 3 ? NIGHT_FRAME_BIT : HDR_FRAME_BIT)) == 0) {
                return false;
            }
        }
        return true;
    }

    // Like the library, prefers the composition's value.
    private static long modeOf(FramePlan frame) {
        Object value = frame.composition().get(MODE);
        return value instanceof Number number ? number.longValue() : number(frame.captureResult(), MODE);
    }

    private static long number(CameraMetadataNative report, String tag) {
        return report.get(tag) instanceof Number number ? number.longValue() : 0;
    }

    private void onTimestamps() {
        Map<Long, Integer> frames = new TreeMap<>();
        for (int i = 0; i < mFrames.size(); ++i) {
            long time = number(mFrames.get(i).captureResult(), TIME);
            Integer other = time == 0 ? null : frames.putIfAbsent(time, i);
            if (other != null) {
                field(i, "captureResult", TIME).warn("frames " + other + " and " + i + " have the same time "
                        + time + "; vary it with {\"first\": ..., \"step\": ...}");
                return;
            }
        }
    }

    private void onInputs() {
        int[] counts = new int[mFrames.size()];
        mRequest.inputs().forEach(image -> ++counts[image.frame()]);
        for (int i = 1; i < counts.length && !mRequest.inputs().isEmpty(); ++i) {
            if (counts[i] != counts[0]) {
                mRoot.get("inputs").warn("expected the same number of images for each frame, found "
                        + counts[0] + " for frame 0 and " + counts[i] + " for frame " + i);
                return;
            }
        }
    }
}
