package com.orlu.orlu3rdalgoservice.tool.text;

/** An object of an input file. Checks that run after reading report mistakes at its members. */
public interface Place {
    /** Returns an exception that reports a problem of a member. */
    MistakeException error(String member, String problem);

    /** Notes a warning about a member. */
    void warn(String member, String problem);

    /** Returns the place of a file of which only the name is known. */
    static Place ofFile(String file) {
        return new Place() {
            @Override
            public MistakeException error(String member, String problem) {
                return new MistakeException(file, member, problem);
            }

            @Override
            public void warn(String member, String problem) {
                // A recording documents what happened; nobody can correct it.
            }
        };
    }
}
