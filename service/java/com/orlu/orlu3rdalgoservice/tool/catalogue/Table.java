package com.orlu.orlu3rdalgoservice.tool.catalogue;

import java.io.BufferedReader;
import java.io.IOException;
import java.io.InputStream;
import java.io.InputStreamReader;
import java.io.UncheckedIOException;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.List;

/**
 * The rows of a table in a text file beside this class: words with blanks between, the last one to the
 * line's end.
 */
final class Table {
    private Table() {
    }

    /** The rows of a file, each of this many columns; one with fewer is an IllegalStateException. */
    static List<String[]> rows(String file, int columns) {
        List<String[]> rows = new ArrayList<>();
        try (InputStream stream = Table.class.getResourceAsStream(file);
                BufferedReader reader = new BufferedReader(
                        new InputStreamReader(stream, StandardCharsets.UTF_8))) {
            int number = 0;
            for (String line = reader.readLine(); line != null; line = reader.readLine()) {
                ++number;
                if (line.isBlank() || line.startsWith("#")) {
                    continue;
                }
                String[] row = line.trim().split(" +", columns);
                if (row.length != columns) {
                    throw new IllegalStateException(
                            file + ":" + number + ": needs " + columns + " columns: " + line);
                }
                rows.add(row);
            }
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
        return rows;
    }
}
