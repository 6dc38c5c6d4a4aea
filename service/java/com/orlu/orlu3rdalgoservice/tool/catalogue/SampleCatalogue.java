package com.orlu.orlu3rdalgoservice.tool.catalogue;

import java.util.HashMap;
import java.util.List;
import java.util.Map;

/** The request files of the folder samples. */
final class SampleCatalogue {
    private static final String HELP =
            "Lists the request files in samples/: what each shows, its frames and algorithms. Of one it "
            + "says also its images, and the tags that few other samples set.";

    private SampleCatalogue() {
    }

    static Catalogue catalogue() {
        return new Catalogue("sample", HELP, List.of("shape", "algorithms"),
                entry -> entry.text("about"), SampleCatalogue::entries);
    }

    private static List<Entry> entries() {
        List<Sample> samples = Sample.all();
        Map<String, Integer> uses = new HashMap<>();
        samples.forEach(sample -> sample.tags().keySet().forEach(tag -> uses.merge(tag, 1, Integer::sum)));
        return samples.stream().map(sample -> entry(sample, uses, samples.size() / 4)).toList();
    }

    private static Entry entry(Sample sample, Map<String, Integer> uses, int few) {
        List<String> rare = sample.tags().keySet().stream()
                .filter(tag -> uses.get(tag) <= few).sorted().toList();
        int frames = sample.frames();
        return new Entry(sample.name()).with("about", sample.about())
                .with("file", "samples/" + sample.name() + ".json")
                .with("shape", frames + (frames == 1 ? " frame" : " frames"))
                .with("inputs", sample.images("inputs")).with("outputs", sample.images("outputs"))
                .with("algorithms", sample.algorithms()).with("tags", rare);
    }
}
