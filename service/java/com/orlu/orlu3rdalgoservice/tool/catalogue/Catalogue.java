package com.orlu.orlu3rdalgoservice.tool.catalogue;

import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.io.InputStream;
import java.io.UncheckedIOException;
import java.nio.charset.StandardCharsets;
import java.util.List;
import java.util.Map;
import java.util.function.Function;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/**
 * One part of catalogue.json and its printed form. scripts/make_catalogue.py writes catalogue.json.
 *
 * @param one     the singular of the part's name, such as "tag"
 * @param help    the description in --help
 * @param columns the fields that a list prints in a line, after the name
 * @param below   returns the text that a list prints below an entry's line
 */
public record Catalogue(String one, String help, List<String> columns, Function<Json, String> below) {
    private static final String FILE = "catalogue.json";
    private static final Map<String, Catalogue> PARTS = Map.of(
            "tags", new Catalogue("tag",
                    "List the tags of capture results and compositions: type, unit and meaning. For one "
                    + "tag, also print the values with a meaning, the functions that read it or put it "
                    + "back, the parameters that change with it and their values without it, and the "
                    + "values in samples.",
                    List.of("type", "unit"), entry -> text(entry.get("meaning"))),
            "algorithms", new Catalogue("algorithm",
                    "List the algorithms that a request can ask for. For one algorithm, also print when "
                    + "the library adds or removes it, its effects on the request, the results read "
                    + "back, whether the stand-in runs it, and its outcome in each sample.",
                    List.of("standIn"), entry -> text(entry.get("is"))),
            "parameters", new Catalogue("parameter",
                    "List the parameters that the library passes to the algorithm library (in) and reads "
                    + "back (out), by section (without orlu.algo.) and key: type and bytes. For one "
                    + "parameter, also print the functions that write it or read it back, the tags that "
                    + "change it, and its value without tags.",
                    List.of("type", "bytes", "direction"), Catalogue::belowParameter),
            "formats", new Catalogue("format",
                    "List the image formats: their pixels, and the code that the algorithm library gets. "
                    + "For one format, also print its planes, the bytes of a row of W pixels, the "
                    + "treatment of strides, the files that can fill an image, and the samples with it.",
                    List.of("code"), entry -> text(entry.get("is"))),
            "samples", new Catalogue("sample",
                    "List the request files in samples/: what each shows, its frames and algorithms. "
                    + "For one sample, also print its images and the tags that few other samples set.",
                    List.of("shape", "algorithms"), entry -> text(entry.get("about"))));

    /** Returns a part by its name: tags, algorithms, parameters, formats or samples. */
    public static Catalogue of(String part) {
        return PARTS.get(part);
    }

    /** Returns the entries of a part, in the order of the list. */
    public static List<Json> entries(String part) {
        try (InputStream stream = Catalogue.class.getResourceAsStream(FILE)) {
            String text = new String(stream.readAllBytes(), StandardCharsets.UTF_8);
            return Json.parse(FILE, 1, text).require(part).list();
        } catch (MistakeException e) {
            throw new IllegalStateException(e);
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
    }

    public static String name(Json entry) {
        return entry.string("name", "");
    }

    /** Returns a value as text. Commas separate the elements of a list, blanks the values of an object. */
    public static String text(Json value) {
        if (value.isList()) {
            return value.elements().stream().map(Catalogue::text).collect(Collectors.joining(", "));
        }
        return value.isObject()
                ? value.entries().values().stream().map(Catalogue::text).collect(Collectors.joining("  "))
                : value.text();
    }

    private static String belowParameter(Json entry) {
        String tags = text(entry.get("tags"));
        return Stream.of(functions("by ", entry.get("writtenBy")), tags.isEmpty() ? "" : "from " + tags,
                functions("read back by ", entry.get("readBackBy")))
                .filter(part -> !part.isEmpty()).collect(Collectors.joining("; "));
    }

    // Returns `before` and the functions' names, without their files; "" if there are no functions.
    private static String functions(String before, Json places) {
        String names = places.elements().stream().map(place -> text(place).replaceFirst(" .*", "")).distinct()
                .collect(Collectors.joining(", "));
        return names.isEmpty() ? "" : before + names;
    }
}
