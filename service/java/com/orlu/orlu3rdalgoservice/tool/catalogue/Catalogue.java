package com.orlu.orlu3rdalgoservice.tool.catalogue;

import java.util.List;
import java.util.function.Function;
import java.util.function.Supplier;

/**
 * One part of the catalogue.
 *
 * @param one     what an entry is called, such as "tag"
 * @param help    what the help says of it
 * @param columns the fields that a line of the list shows after the name
 * @param below   what is shown below that line of an entry; "" for nothing
 * @param entries all entries, by name
 */
record Catalogue(String one, String help, List<String> columns, Function<Entry, String> below,
        Supplier<List<Entry>> entries) {
}
