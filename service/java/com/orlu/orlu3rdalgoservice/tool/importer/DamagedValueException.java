package com.orlu.orlu3rdalgoservice.tool.importer;

/** An invalid printed value; the message gives the reason. */
final class DamagedValueException extends Exception {
    private static final long serialVersionUID = 1;

    DamagedValueException(String problem) {
        super(problem);
    }
}
