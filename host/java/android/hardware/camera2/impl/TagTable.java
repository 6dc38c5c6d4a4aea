package android.hardware.camera2.impl;

import java.io.BufferedReader;
import java.io.IOException;
import java.io.InputStream;
import java.io.InputStreamReader;
import java.io.UncheckedIOException;
import java.nio.charset.StandardCharsets;
import java.util.Map;
import java.util.Objects;
import java.util.Set;
import java.util.TreeSet;
import java.util.concurrent.ConcurrentHashMap;

/** All known tags with their types: the tags in tags.txt and all registered tags. */
public final class TagTable {
    private static final Map<String, TagType> TAGS = load();

    private TagTable() {
    }

    /** Returns the tag's type; null for an unknown tag. */
    public static TagType typeOf(String tag) {
        return TAGS.get(tag);
    }

    /** Returns all tags, sorted. */
    public static Set<String> names() {
        return new TreeSet<>(TAGS.keySet());
    }

    /**
     * Registers a vendor tag, as the camera's tag descriptor does on the device. Registering a tag again with
     * the same type is allowed. Throws IllegalArgumentException if the tag already has a different type,
     * because metadata may contain values of the earlier type.
     */
    public static void register(String tag, TagType type) {
        put(TAGS, tag, Objects.requireNonNull(type));
    }

    private static void put(Map<String, TagType> tags, String tag, TagType type) {
        TagType known = tags.putIfAbsent(tag, type);
        if (known != null && known != type) {
            throw new IllegalArgumentException("Tag " + tag + " already has type " + known + ", not " + type);
        }
    }

    private static Map<String, TagType> load() {
        Map<String, TagType> tags = new ConcurrentHashMap<>();
        try (InputStream stream = TagTable.class.getResourceAsStream("tags.txt");
                BufferedReader reader = new BufferedReader(
                        new InputStreamReader(stream, StandardCharsets.UTF_8))) {
            for (String line = reader.readLine(); line != null; line = reader.readLine()) {
                if (!line.isBlank() && !line.startsWith("#")) {
                    String[] words = line.trim().split("\\s+");
                    put(tags, words[0], TagType.valueOf(words[1]));
                }
            }
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
        return tags;
    }
}
