package com.orlu.orlu3rdalgoservice.tool.run;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;

/** What the files that a run writes for each of its requests are named after. */
public final class RequestNames {
    private RequestNames() {
    }

    /**
     * A name for each request file of a command line, in their order, none twice: its own without ".json". A
     * second file of one name is named after its folder too, a/x.json and b/x.json as x and b-x; where that
     * is no other name, a number is added.
     */
    public static List<String> of(List<Path> files) {
        Set<String> taken = new HashSet<>();
        Map<String, Path> folders = new HashMap<>();
        List<String> names = new ArrayList<>();
        for (Path file : files) {
            String stem = stem(file);
            Path folder = file.toAbsolutePath().normalize().getParent();
            Path first = folders.putIfAbsent(stem, folder);
            String name = stem;
            if (first != null && !first.equals(folder)) {
                name = (folder.getFileName() == null ? "" : folder.getFileName() + "-") + stem;
            }
            String numbered = name;
            for (int i = 2; !taken.add(numbered); ++i) {
                numbered = name + "-" + i;
            }
            names.add(numbered);
        }
        return names;
    }

    /** The name of a request file that is alone. */
    public static String stem(Path file) {
        String stem = file.getFileName().toString().replaceFirst("\\.json$", "");
        return stem.isEmpty() ? "request" : stem;
    }
}
