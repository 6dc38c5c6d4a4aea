package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.tool.catalogue.Catalogue;

import java.util.Iterator;
import java.util.List;
import java.util.stream.Stream;

/** Values for bash completion, mostly read from the catalogue when the completion script is printed. */
final class Candidates {
    private Candidates() {
    }

    /** Returns the names in a part of the catalogue; for a name of the form section/key, only the key. */
    static List<String> of(String part) {
        return Catalogue.entries(part).stream().map(entry -> Catalogue.name(entry).replaceFirst(".*/", ""))
                .toList();
    }

    static final class Explained implements Iterable<String> {
        @Override
        public Iterator<String> iterator() {
            return Stream.concat(Stream.of("all", "algorithms"), of("parameters").stream()).iterator();
        }
    }

    static final class Algorithms implements Iterable<String> {
        @Override
        public Iterator<String> iterator() {
            return of("algorithms").iterator();
        }
    }

    static final class Kinds implements Iterable<String> {
        @Override
        public Iterator<String> iterator() {
            return of("samples").iterator();
        }
    }
}
