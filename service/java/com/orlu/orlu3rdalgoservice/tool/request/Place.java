package com.orlu.orlu3rdalgoservice.tool.request;

/** An object of a request file, for what is found to be wrong with it after it was read. */
public interface Place {
    /** What is wrong with a member of the object, as an exception to be thrown. */
    RequestFileException error(String member, String problem);

    /** Notes what seems wrong with a member of the object. */
    void warn(String member, String problem);

    /** A file that is known by its name alone. */
    static Place ofFile(String file) {
        return new Place() {
            @Override
            public RequestFileException error(String member, String problem) {
                return new RequestFileException(file, member, problem);
            }

            @Override
            public void warn(String member, String problem) {
                // A recording holds what happened, right or not.
            }
        };
    }
}
