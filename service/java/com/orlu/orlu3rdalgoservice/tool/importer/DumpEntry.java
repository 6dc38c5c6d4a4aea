package com.orlu.orlu3rdalgoservice.tool.importer;

import java.util.List;

/**
 * One entry of a metadata buffer in the camera service's dump.
 *
 * @param line   the line of the entry in the file, from 1
 * @param tag    the tag's section and name
 * @param number the tag's number in hexadecimal
 * @param type   byte, int32, int64, float, double or rational
 * @param count  the number of values that the entry announces
 * @param values the printed values; a rational has the form "n/d"
 */
record DumpEntry(int line, String tag, String number, String type, long count, List<String> values) {
    String place() {
        return ":" + line;
    }

    /** Returns a problem if there are too few or too many values; null if the entry is complete. */
    String incompleteness() {
        if (values.size() == count) {
            return null;
        }
        return values.size() < count
                ? "incomplete entry: " + values.size() + " of " + count + " values are printed"
                : "damaged entry: " + values.size() + " values instead of " + count;
    }
}
