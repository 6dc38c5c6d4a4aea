package com.orlu.orlu3rdalgoservice.tool.run;

import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;

/** Names the requests of a run. A request's name is the prefix of its output files' names. */
public final class RequestNames {
    private RequestNames() {
    }

    /**
     * Returns a unique name for each request file, in order: the file's name without ".json". If an earlier
     * file has the same name, and the first such file is in another folder, the name of the later file's
     * folder becomes a prefix: a/x.json and b/x.json become x and b-x. If the resulting name is taken, a
     * number is appended.
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

    /** The name of a request file without ".json"; "request" if nothing remains. */
    public static String stem(Path file) {
        String stem = file.getFileName().toString().replaceFirst("\\.json$", "");
        return stem.isEmpty() ? "request" : stem;
    }
}
