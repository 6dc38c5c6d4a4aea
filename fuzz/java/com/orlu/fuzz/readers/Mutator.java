package com.orlu.fuzz.readers;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.Random;
import java.util.stream.Stream;
import java.util.zip.CRC32;

/** Mutates the files of an example: JSON structures, parts of image files, lines of text or any bytes. */
final class Mutator {
    private final Random mChance;
    private final JsonMutator mJson;
    private final PictureMutator mPictures;
    private final List<String> mTokens;

    /** Creates a mutator that may insert these values. Each is a JSON string with its quotes. */
    Mutator(Random chance, List<String> values) {
        mChance = chance;
        mJson = new JsonMutator(chance, values);
        mPictures = new PictureMutator(chance);
        mTokens = new ArrayList<>(List.of("null", "", "NaN", "inf", "-1", "9".repeat(40), "\u001b[2J",
                "\u202e", "[", "]", "(", "\0", "x".repeat(5000)));
        values.forEach(value -> mTokens.add(value.substring(1, value.length() - 1)));
    }

    private <T> T one(List<T> all) {
        return all.get(mChance.nextInt(all.size()));
    }

    /** Changes one to three things in the files of a folder. */
    void mutate(Path folder) throws IOException {
        List<Path> files = files(folder);
        for (int i = mChance.nextInt(3); i >= 0; --i) {
            Path file = one(files);
            byte[] bytes = Files.readAllBytes(file);
            String text = new String(bytes, StandardCharsets.UTF_8);
            String name = file.getFileName().toString();
            boolean isStructured = mChance.nextInt(6) > 0;
            if (isStructured && name.endsWith(".json")) {
                Files.write(file, json(text, false).getBytes(StandardCharsets.UTF_8));
            } else if (isStructured && name.endsWith(".jsonl")) {
                Files.write(file, line(text, true).getBytes(StandardCharsets.UTF_8));
            } else if (isStructured && name.endsWith(".txt")) {
                Files.write(file, line(text, false).getBytes(StandardCharsets.UTF_8));
            } else if (isStructured) {
                mPictures.mutate(bytes);
                Files.write(file, bytes);
            } else {
                Files.write(file, bytes(bytes));
            }
        }
        if (mChance.nextInt(8) > 0) {
            correctSums(folder);
        }
    }

    static List<Path> files(Path folder) throws IOException {
        try (Stream<Path> all = Files.walk(folder)) {
            return all.filter(file -> Files.isRegularFile(file)
                    && !Files.isSymbolicLink(file)).sorted().toList();
        }
    }

    private String json(String text, boolean isLine) {
        try {
            return JsonMutator.text(mJson.mutate(JsonMutator.parse(text)), isLine);
        } catch (IOException e) {
            return text;
        }
    }

    // Changes, removes or replaces a line, or inserts a copy of a line.
    private String line(String text, boolean isJson) {
        List<String> lines = new ArrayList<>(Arrays.asList(text.split("\n")));
        if (lines.isEmpty()) {
            // The text contains only line ends.
            lines.add("");
        }
        int at = mChance.nextInt(lines.size());
        switch (mChance.nextInt(10)) {
            case 0 -> lines.remove(at);
            case 1 -> lines.add(at, one(lines));
            case 2 -> lines.set(at, one(lines));
            case 3 -> lines.set(at, one(mTokens));
            default -> lines.set(at, isJson ? json(lines.get(at), true) : words(lines.get(at)));
        }
        return String.join("\n", lines) + "\n";
    }

    private String words(String line) {
        List<String> words = new ArrayList<>(Arrays.asList(line.split("(?<=\\W)|(?=\\W)")));
        if (words.isEmpty()) {
            return line;
        }
        int at = mChance.nextInt(words.size());
        switch (mChance.nextInt(4)) {
            case 0 -> words.remove(at);
            case 1 -> words.add(at, one(words));
            case 2 -> words.set(at, Integer.toString(mChance.nextInt()));
            default -> words.set(at, one(mTokens));
        }
        return String.join("", words);
    }

    private byte[] bytes(byte[] bytes) {
        if (bytes.length == 0) {
            return new byte[] {(byte) mChance.nextInt()};
        }
        // Half of the changes start within the first 512 bytes, which contain the headers.
        int at = mChance.nextInt(mChance.nextBoolean() ? bytes.length : Math.min(bytes.length, 512));
        byte[] changed = bytes.clone();
        switch (mChance.nextInt(4)) {
            case 0 -> changed[at] ^= (byte) (1 << mChance.nextInt(8));
            case 1 -> changed[at] = (byte) mChance.nextInt();
            case 2 -> changed = Arrays.copyOf(bytes, at);
            default -> {
                int length = Math.min(mChance.nextInt(64), bytes.length - at);
                System.arraycopy(bytes, mChance.nextInt(bytes.length - length + 1), changed, at, length);
            }
        }
        return changed;
    }

    // Corrects the checksum, and the size if given, of each file that a JSON file describes.
    private static void correctSums(Path folder) throws IOException {
        for (Path file : files(folder)) {
            boolean isLines = file.toString().endsWith(".jsonl");
            String text = isLines || file.toString().endsWith(".json") ? Files.readString(file,
                    StandardCharsets.ISO_8859_1) : "";
            if (text.contains("\"crc\"")) {
                StringBuilder corrected = new StringBuilder();
                for (String part : isLines ? text.split("(?<=\n)") : new String[] {text}) {
                    corrected.append(part.contains("\"crc\"") ? corrected(folder, part, isLines) : part);
                }
                Files.write(file, corrected.toString().getBytes(StandardCharsets.ISO_8859_1));
            }
        }
    }

    private static String corrected(Path folder, String text, boolean isLine) {
        try {
            Object tree = JsonMutator.parse(text);
            correct(folder, tree);
            return JsonMutator.text(tree, isLine) + "\n";
        } catch (IOException e) {
            return text;
        }
    }

    @SuppressWarnings("unchecked")
    private static void correct(Path folder, Object tree) throws IOException {
        if (tree instanceof List<?> elements) {
            for (Object element : elements) {
                correct(folder, element);
            }
        } else if (tree instanceof Map<?, ?> members) {
            for (Object member : members.values()) {
                correct(folder, member);
            }
            String name = members.get("file") instanceof String text ? text.replace("\"", "") : "";
            if (members.containsKey("crc") && name.matches("\\w[\\w.-]*")
                    && Files.isRegularFile(folder.resolve(name))
                    && !Files.isSymbolicLink(folder.resolve(name))) {
                byte[] bytes = Files.readAllBytes(folder.resolve(name));
                CRC32 sum = new CRC32();
                sum.update(bytes);
                Map<String, Object> corrected = (Map<String, Object>) members;
                corrected.put("crc", "\"%08x\"".formatted(sum.getValue()));
                corrected.replace("size", Integer.toString(bytes.length));
            }
        }
    }
}
