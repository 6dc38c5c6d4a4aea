package com.orlu.orlu3rdalgoservice.tool.request;

import android.graphics.Rect;
import android.hardware.camera2.impl.CameraMetadataNative;
import android.hardware.camera2.params.Face;
import android.hardware.camera2.params.MeteringRectangle;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.tags.TagFacts;

import java.util.List;
import java.util.function.Function;

/** Warns about values that no camera reports. Most such values are in the wrong unit. */
final class TagAdvice {
    private static final String ARRAY = "android.sensor.info.activeArraySize";
    private static final String CROP = "android.scaler.cropRegion";
    private static final String FACES = "android.statistics.faces";
    private static final List<Range> RANGES = List.of(
            new Range("android.sensor.exposureTime", 1e3, 1e11),
            new Range("android.sensor.frameDuration", 1e5, 1e11),
            new Range("android.sensor.sensitivity", 1, 1e7),
            new Range("android.lens.aperture", 0.5, 64),
            new Range("android.lens.focalLength", 0.5, 1000),
            new Range("android.lens.focusDistance", 0, 100),
            new Range("android.jpeg.quality", 1, 100),
            new Range("android.control.zoomRatio", 0.1, 200),
            new Range("orlu.control.zoom_ratio", 0.1, 200));

    private TagAdvice() {
    }

    private record Range(String tag, double least, double most) {
    }

    /** Warns about a frame's capture result. `fieldOf` returns a tag's field, to which warnings are added. */
    static void give(CameraMetadataNative report, Function<String, Json> fieldOf) {
        for (Range range : RANGES) {
            if (report.get(range.tag()) instanceof Number number
                    && (number.doubleValue() < range.least() || number.doubleValue() > range.most())) {
                fieldOf.apply(range.tag()).warn("probably wrong; expected " + shown(range.least())
                        + " to " + shown(range.most()) + " (" + TagFacts.of(range.tag()).unit() + "), found "
                        + number);
            }
        }
        if (report.get("android.jpeg.orientation") instanceof Integer degrees && degrees % 90 != 0) {
            fieldOf.apply("android.jpeg.orientation").warn("expected 0, 90, 180 or 270, found " + degrees);
        }
        onRectangles(report, fieldOf);
    }

    private static String shown(double limit) {
        return limit == (long) limit ? String.valueOf((long) limit) : String.valueOf(limit);
    }

    private static void onRectangles(CameraMetadataNative report, Function<String, Json> fieldOf) {
        Rect array = report.get(ARRAY) instanceof Rect size ? size : null;
        if (report.get(CROP) instanceof Rect crop) {
            onRectangle(crop, array, fieldOf.apply(CROP), "");
        }
        if (report.get(FACES) instanceof Face[] faces) {
            for (int i = 0; i < faces.length; ++i) {
                onRectangle(faces[i].getBounds(), array, fieldOf.apply(FACES), "face " + i + ": ");
            }
        }
        for (String tag : List.of("android.control.aeRegions", "android.control.afRegions")) {
            if (report.get(tag) instanceof MeteringRectangle[] regions) {
                for (int i = 0; i < regions.length; ++i) {
                    onRectangle(regions[i].getRect(), array, fieldOf.apply(tag), "region " + i + ": ");
                }
            }
        }
    }

    private static void onRectangle(Rect found, Rect array, Json field, String what) {
        if (found.right < found.left || found.bottom < found.top) {
            field.warn(what + "expected left <= right and top <= bottom, found " + shown(found));
        } else if (array != null && (found.left < array.left || found.top < array.top
                || found.right > array.right || found.bottom > array.bottom)) {
            field.warn(what + shown(found) + " exceeds the active array " + shown(array));
        }
    }

    private static String shown(Rect rect) {
        return "[" + rect.left + ", " + rect.top + ", " + rect.right + ", " + rect.bottom + "]";
    }
}
