package com.orlu.orlu3rdalgoservice.tool.importer;

/** A printed value that can't be taken; the message says why. */
final class DamagedValueException extends Exception {
    private static final long serialVersionUID = 1;

    DamagedValueException(String problem) {
        super(problem);
    }
}
