package com.orlu.orlu3rdalgoservice.tool.catalogue;

import java.util.List;

/** One part of the catalogue. */
interface Catalogue {
    /** "tag". */
    String one();

    /** What the help says of it. */
    String help();

    /** The fields that a line of the list shows after the name. */
    List<String> columns();

    /** What is shown below that line; "" for nothing. */
    String below(Entry entry);

    /** All entries, by name. */
    List<Entry> entries();
}
