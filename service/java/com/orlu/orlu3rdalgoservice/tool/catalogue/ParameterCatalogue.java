package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.tags.ParameterType;
import com.orlu.orlu3rdalgoservice.tool.tags.Table;

import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** The parameters that cross to the algorithm library, or back. */
final class ParameterCatalogue {
    private static final String FILE = "/com/orlu/orlu3rdalgoservice/tool/tags/parameters.txt";
    private static final int COLUMNS = 5;
    /** As many as there are frames; or fifty zeros, where the camera has no scores. Read back are fifty. */
    private static final String BY_FRAMES = "*";
    /** Bytes of an element, of what can have several. */
    private static final Map<String, Integer> ELEMENTS =
            Map.of("INTS", 4, "FLOATS", 4, "LONGS", 8, "DOUBLES", 8, "BITS", 8);

    /** What the bytes are a record of, in jni/metadata_records.h. */
    private static final Map<String, String> RECORDS = Map.of("EXIF", "ExifInfo", "FACES", "_tagOrluFaceInfo",
            "FACE_OUTLINE", "FaceOutline", "REFOCUS_PACK", "RefocusPackParams", "PHASE_DETECTION", "PdafInfo",
            "SENSOR_CROP", "SCR_Type", "RECT", "__tagOrluRect", "BITS", "ProcessedAlgo");

    private static final String HELP =
            "Lists the parameters that the library hands to the algorithm library (in) and reads back "
            + "(out), by section without orlu.algo. and key: type and bytes. Of one it says also which "
            + "functions write it or read it back, the tags that change it, and what it is where no tag "
            + "is there.";

    private ParameterCatalogue() {
    }

    static Catalogue catalogue() {
        return new Catalogue("parameter", HELP, List.of("type", "bytes", "direction"),
                ParameterCatalogue::below, ParameterCatalogue::entries);
    }

    private static String below(Entry entry) {
        String name = entry.name();
        List<String> tags = Found.tagsOf(name);
        return Stream.of(functions("by ", Found.writersOf(name)),
                tags.isEmpty() ? "" : "from " + String.join(", ", tags),
                functions("read back by ", Found.returnersOf(name)))
                .filter(part -> !part.isEmpty()).collect(Collectors.joining("; "));
    }

    // Without their files.
    private static String functions(String before, List<String> places) {
        return places.isEmpty() ? "" : before + places.stream().map(place -> place.replaceFirst(" .*", ""))
                .distinct().collect(Collectors.joining(", "));
    }

    private static List<Entry> entries() {
        return Table.rows(FILE, COLUMNS).stream().map(ParameterCatalogue::entry).toList();
    }

    private static Entry entry(String[] row) {
        String name = row[0] + "/" + row[1];
        return new Entry(name).with("section", "orlu.algo." + row[0]).with("key", row[1])
                .with("type", type(row[2], row[3]))
                .with("bytes", row[3].equals(BY_FRAMES) ? "400 or 8 x frames" : Integer.valueOf(row[3]))
                .with("record", RECORDS.getOrDefault(row[2], ""))
                .with("direction", List.of(row[4].split(","))).with("elements", elements(row[2], row[3]))
                .with("writtenBy", Found.writersOf(name)).with("readBackBy", Found.returnersOf(name))
                .with("tags", Found.tagsOf(name)).with("withoutTags", Found.absentValues(name));
    }

    private static String type(String type, String bytes) {
        String text = ParameterType.valueOf(type).text();
        return text.endsWith("[]") && !bytes.equals(BY_FRAMES)
                ? text.replace("]", elements(type, bytes) + "]") : text;
    }

    private static Object elements(String type, String bytes) {
        if (bytes.equals(BY_FRAMES)) {
            return "50, or one a frame";
        }
        int size = Integer.parseInt(bytes);
        return size / ELEMENTS.getOrDefault(type, size);
    }
}
