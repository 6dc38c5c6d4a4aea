package com.orlu.orlu3rdalgoservice.tool.view;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.security.MessageDigest;
import java.security.NoSuchAlgorithmException;
import java.util.Base64;
import java.util.List;
import java.util.Map;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** Assembles a page: HTML, style sheets, scripts and data in one self-contained file. */
enum PageTemplate {
    REQUEST("page.html", List.of("dom.js", "theme.js", "histogram.js", "loupe.js", "compare.js",
            "pictures.js", "memory.js", "timeline.js", "tables.js", "parameters.js", "results.js", "page.js")),
    INDEX("index.html", List.of("dom.js", "theme.js", "index.js")),
    /** A page of pictures side by side. */
    SHEET("index.html", List.of("dom.js", "theme.js", "sheet.js"));

    private static final List<String> STYLES = List.of("page.css", "parts.css");
    private static final Pattern PART = Pattern.compile("@(title|policy|style|script|data)@");

    private final String mHtml;
    private final List<String> mScripts;

    PageTemplate(String html, List<String> scripts) {
        mHtml = html;
        mScripts = scripts;
    }

    String page(String title, Object data) throws IOException {
        StringBuilder script = new StringBuilder("\n");
        for (String name : mScripts) {
            script.append(resource(name));
        }
        StringBuilder style = new StringBuilder("\n");
        for (String name : STYLES) {
            style.append(resource(name));
        }
        // Escaped data can't close the element around it.
        Map<String, String> parts = Map.of("title", escaped(title), "policy", policy(script, style),
                "style", style.toString(), "script", script.toString(),
                "data", JsonWriter.line(data).replace("<", "\\u003c").replace(">", "\\u003e")
                        .replace("&", "\\u0026"));
        // A single pass, since inserted text may look like a placeholder.
        return PART.matcher(resource(mHtml)).replaceAll(
                part -> Matcher.quoteReplacement(parts.get(part.group(1))));
    }

    /** Returns a policy that allows only the page's own script and styles, and embedded images. */
    private static String policy(CharSequence script, CharSequence style) throws IOException {
        return ("default-src 'none'; script-src '%s'; style-src '%s'; img-src data:; "
                + "base-uri 'none'; form-action 'none'").formatted(hash(script), hash(style));
    }

    private static String hash(CharSequence text) throws IOException {
        try {
            byte[] digest = MessageDigest.getInstance("SHA-256")
                    .digest(text.toString().getBytes(StandardCharsets.UTF_8));
            return "sha256-" + Base64.getEncoder().encodeToString(digest);
        } catch (NoSuchAlgorithmException e) {
            throw new IOException(e);
        }
    }

    private static String escaped(String text) {
        return Printable.line(text).replace("&", "&amp;").replace("<", "&lt;");
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
