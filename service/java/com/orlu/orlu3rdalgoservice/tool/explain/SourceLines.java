package com.orlu.orlu3rdalgoservice.tool.explain;

import com.orlu.orlu3rdalgoservice.tool.model.Call;
import com.orlu.orlu3rdalgoservice.tool.model.Event;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;

/** Finds the source lines of calls by running addr2line on the loaded files. */
public final class SourceLines {
    /** A line of source, and the function around it. */
    public record Place(String function, String file, int line) {
        public String text() {
            return function + ", " + file + ":" + line;
        }
    }

    private final Map<String, String> mModules = new HashMap<>();
    private final Map<String, List<Place>> mPlaces = new HashMap<>();
    private String mTool = "addr2line";
    private String mProblem = "";

    /** Reads the paths of the loaded files and their machine from these events. */
    public void learn(RecordedEvents events) {
        for (Event header : events.events("header")) {
            mTool = header.text("machine").startsWith("arm") ? "arm-linux-gnueabihf-addr2line" : "addr2line";
        }
        for (Event module : events.events("module")) {
            mModules.put(module.text("name"), module.text("path"));
        }
    }

    /** Returns why a file's lines could not be looked up; "" if all look-ups ran. */
    public String problem() {
        return mProblem;
    }

    /**
     * Returns the most specific source line of each call: the line of the call's stack that the fewest kinds
     * of calls share. If several lines qualify, returns the innermost. This skips lines that all calls pass
     * through. The element of a call without known lines is null.
     */
    public List<Place> of(List<Call> calls, List<String> kinds) {
        resolve(calls);
        Map<Place, Set<String>> kindsOf = new HashMap<>();
        for (int i = 0; i < calls.size(); ++i) {
            for (Place place : way(calls.get(i))) {
                kindsOf.computeIfAbsent(place, key -> new HashSet<>()).add(kinds.get(i));
            }
        }
        List<Place> telling = new ArrayList<>();
        for (Call call : calls) {
            Place best = null;
            for (Place place : way(call)) {
                if (best == null || kindsOf.get(place).size() < kindsOf.get(best).size()) {
                    best = place;
                }
            }
            telling.add(best);
        }
        return telling;
    }

    // Returns the known lines of the call's stack, innermost first. Templates in headers run the rows of all
    // tables, so a line of a header does not identify a row: returns such lines only if no others are known.
    private List<Place> way(Call call) {
        List<Place> all = call.begin().texts("from").stream()
                .flatMap(address -> mPlaces.getOrDefault(address, List.of()).stream()).toList();
        List<Place> sources = all.stream().filter(place -> !place.file().endsWith(".h")).toList();
        return sources.isEmpty() ? all : sources;
    }

    private void resolve(List<Call> calls) {
        Map<String, Set<String>> offsets = new HashMap<>();
        for (Call call : calls) {
            for (String address : call.begin().texts("from")) {
                int plus = address.lastIndexOf('+');
                if (plus > 0 && !mPlaces.containsKey(address)) {
                    offsets.computeIfAbsent(address.substring(0, plus), module -> new TreeSet<>())
                            .add(address.substring(plus + 1));
                }
            }
        }
        offsets.forEach(this::resolve);
    }

    private void resolve(String module, Set<String> offsets) {
        String path = mModules.get(module);
        if (path == null) {
            mProblem = "no event has the path of " + module;
            return;
        }
        // VFORK needs no spawn helper. In the emulator, Java's spawn helper is an ARM program, which the host
        // can't run.
        System.setProperty("jdk.lang.Process.launchMechanism", "VFORK");
        List<String> command = new ArrayList<>(List.of(mTool, "-a", "-f", "-i", "-C", "-e", path));
        command.addAll(offsets);
        try {
            Process tool = new ProcessBuilder(command).redirectError(ProcessBuilder.Redirect.DISCARD).start();
            byte[] answer = tool.getInputStream().readAllBytes();
            read(module, new String(answer, StandardCharsets.UTF_8).lines().toList());
        } catch (IOException e) {
            mProblem = e.getMessage();
        }
    }

    // For each offset, the output has the address, then a function and a line per inlining level, innermost
    // first.
    private void read(String module, List<String> lines) {
        List<Place> places = null;
        for (int i = 0; i < lines.size(); ++i) {
            if (lines.get(i).startsWith("0x")) {
                long offset = Long.parseUnsignedLong(lines.get(i).substring(2), 16);
                places = new ArrayList<>();
                mPlaces.put(module + "+0x" + Long.toHexString(offset), places);
            } else if (places != null && i + 1 < lines.size()) {
                add(places, lines.get(i), lines.get(++i));
            }
        }
    }

    private static void add(List<Place> places, String function, String position) {
        int colon = position.lastIndexOf(':');
        String line = position.substring(colon + 1).split(" ")[0];
        if (colon > 0 && line.matches("[0-9]+")) {
            Path path = Path.of(position.substring(0, colon)).normalize();
            int names = path.getNameCount();
            String file = path.subpath(Math.max(0, names - 2), names).toString();
            places.add(new Place(shortName(function), file, Integer.parseInt(line)));
        }
    }

    // Returns the function's name without scopes, arguments and return type.
    private static String shortName(String function) {
        String name = function.replace("(anonymous namespace)::", "");
        int end = name.indexOf('(');
        name = end > 0 ? name.substring(0, end) : name;
        int template = name.indexOf('<');
        name = template > 0 ? name.substring(0, template) : name;
        return name.substring(Math.max(name.lastIndexOf(':'), name.lastIndexOf(' ')) + 1);
    }
}
