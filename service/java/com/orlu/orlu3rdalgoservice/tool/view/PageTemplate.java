package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.tool.json.JsonWriter;

import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.util.List;

/** Puts a page together: its HTML, style sheets, scripts and data in one file that needs no other. */
final class PageTemplate {
    private static final List<String> STYLES = List.of("page.css", "parts.css");
    // What all pages have.
    private static final List<String> COMMON = List.of("dom.js", "theme.js");
    private static final List<String> REQUEST = List.of("histogram.js", "loupe.js", "compare.js",
            "pictures.js", "memory.js", "timeline.js", "tables.js", "parameters.js", "results.js", "page.js");
    private static final List<String> INDEX = List.of("index.js");

    private PageTemplate() {
    }

    /** The page on one request. */
    static String request(String title, Object data) throws IOException {
        return page("page.html", title, REQUEST, data);
    }

    /** The page that leads to those of several requests. */
    static String index(String title, Object data) throws IOException {
        return page("index.html", title, INDEX, data);
    }

    private static String page(String html, String title, List<String> scripts, Object data)
            throws IOException {
        StringBuilder script = new StringBuilder();
        for (List<String> names : List.of(COMMON, scripts)) {
            for (String name : names) {
                script.append(resource(name));
            }
        }
        StringBuilder style = new StringBuilder();
        for (String name : STYLES) {
            style.append(resource(name));
        }
        // Nothing in the data can end the element around it.
        return resource(html).replace("@title@", escaped(title)).replace("@style@", style)
                .replace("@script@", script).replace("@data@", JsonWriter.line(data).replace("<", "\\u003c")
                        .replace(">", "\\u003e").replace("&", "\\u0026"));
    }

    private static String escaped(String text) {
        return text.replace("&", "&amp;").replace("<", "&lt;");
    }

    private static String resource(String name) throws IOException {
        try (InputStream stream = PageTemplate.class.getResourceAsStream(name)) {
            if (stream == null) {
                throw new IOException("the page's part " + name + " is missing from the jar");
            }
            return new String(stream.readAllBytes(), StandardCharsets.UTF_8);
        }
    }
}
