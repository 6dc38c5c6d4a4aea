package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.tags.Table;

import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/** The image formats. */
final class FormatCatalogue {
    private static final String HELP =
            "Lists the image formats: what the pixels are, the code that the algorithm library gets, "
            + "planes, bytes of a row of a picture W pixels wide, what becomes of strides, which files a "
            + "request file can fill an image from, and which samples have it.";

    private FormatCatalogue() {
    }

    static Catalogue catalogue() {
        return new Catalogue("format", HELP, List.of("code"),
                entry -> entry.text("is"), FormatCatalogue::entries);
    }

    private static List<Entry> entries() {
        Map<String, Entry> entries = new LinkedHashMap<>();
        for (String[] row : Table.rows("formats.txt", 3)) {
            entries.computeIfAbsent(row[0], Entry::new).with(row[1], row[2]);
        }
        List<Sample> samples = Sample.all();
        for (Entry entry : entries.values()) {
            entry.with("inputsOf", having(samples, "inputs", entry.name()))
                    .with("outputsOf", having(samples, "outputs", entry.name()));
        }
        return List.copyOf(entries.values());
    }

    private static List<String> having(List<Sample> samples, String part, String format) {
        return samples.stream().filter(sample -> sample.images(part).stream()
                .anyMatch(image -> image.matches("[0-9]+ " + format + ",.*"))).map(Sample::name).toList();
    }
}
