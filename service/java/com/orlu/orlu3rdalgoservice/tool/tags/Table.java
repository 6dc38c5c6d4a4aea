package com.orlu.orlu3rdalgoservice.tool.tags;

import java.io.BufferedReader;
import java.io.IOException;
import java.io.InputStream;
import java.io.InputStreamReader;
import java.io.UncheckedIOException;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Set;

/**
 * Reads a table from a text file beside this class: one row per line, columns separated by blanks. The last
 * column extends to the end of the line. Blank lines and lines that begin with # are ignored.
 */
final class Table {
    private Table() {
    }

    /** Returns the rows, each with this many columns. Throws IllegalStateException if a row has fewer. */
    static List<String[]> rows(String file, int columns) {
        List<String[]> rows = new ArrayList<>();
        for (String line : lines(file)) {
            String[] row = line.split(" +", columns);
            if (row.length != columns) {
                throw new IllegalStateException(file + ": expected " + columns + " columns: " + line);
            }
            rows.add(row);
        }
        return rows;
    }

    /** Returns the distinct words of the first column, in the order of the file. */
    static List<String> firstWords(String file) {
        Set<String> words = new LinkedHashSet<>();
        for (String line : lines(file)) {
            words.add(line.substring(0, line.indexOf(' ')));
        }
        return new ArrayList<>(words);
    }

    private static List<String> lines(String file) {
        List<String> lines = new ArrayList<>();
        try (InputStream stream = Table.class.getResourceAsStream(file);
                BufferedReader reader = new BufferedReader(
                        new InputStreamReader(stream, StandardCharsets.UTF_8))) {
            for (String line = reader.readLine(); line != null; line = reader.readLine()) {
                if (!line.isBlank() && !line.startsWith("#")) {
                    lines.add(line.trim());
                }
            }
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
        return lines;
    }
}
