package com.orlu.orlu3rdalgoservice.tool.importer;

import java.util.ArrayList;
import java.util.List;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * Finds the metadata buffers in a camera service's dump, and ignores other text. Adds a note for each
 * incomplete buffer and each truncated or damaged line, and reads the rest.
 */
final class DumpParser {
    /** Limit on the number of values of an entry; no tag has more. */
    private static final int MOST_VALUES = 1 << 20;
    /** Limit on the length of a line, in characters; no dump has longer lines. */
    private static final int LONGEST_LINE = 1 << 20;
    private static final String BUFFER = "Dumping camera metadata array";
    private static final Pattern SIZE = Pattern.compile(": (\\d{1,9}) / \\d+ entries");
    private static final Pattern ENTRY = Pattern.compile(
            "\\s*+([^\\s.]++\\.\\S++) \\(([0-9a-fA-F]++)\\): "
                    + "(byte|int32|int64|float|double|rational)\\[(\\d{1,9})\\]\\s*");
    private static final Pattern CUT_ENTRY = Pattern.compile("\\s*+[^\\s.]++\\.\\S++ \\([0-9a-fA-F]++.*");
    private static final Pattern RATIONAL = Pattern.compile("\\(\\s*(-?\\d+)\\s*/\\s*(-?\\d+)\\s*\\)");

    private final Notes mNotes;
    private final List<List<DumpEntry>> mBuffers = new ArrayList<>();
    private List<DumpEntry> mBuffer;
    /** The entry to which the next lines of values belong; null after other text. */
    private DumpEntry mEntry;
    private int mBufferLine;
    private int mAnnounced = -1;

    DumpParser(Notes notes) {
        mNotes = notes;
    }

    /** Returns the buffers in the order of the text. */
    List<List<DumpEntry>> parse(List<String> lines) {
        for (int i = 0; i < lines.size(); ++i) {
            String line = lines.get(i);
            Matcher entry = ENTRY.matcher(line);
            if (line.length() > LONGEST_LINE) {
                mNotes.add(":" + (i + 1), "line dropped; expected at most " + LONGEST_LINE
                        + " characters, found " + line.length());
            } else if (line.contains(BUFFER)) {
                begin(line, i + 1);
            } else if (entry.matches()) {
                if (mBuffer == null) {
                    begin("", i + 1);
                }
                mEntry = new DumpEntry(i + 1, entry.group(1), entry.group(2), entry.group(3),
                        Long.parseLong(entry.group(4)), new ArrayList<>());
                mBuffer.add(mEntry);
            } else if (line.strip().startsWith("[") && mEntry != null) {
                addValues(mEntry, line.stripLeading(), i + 1);
            } else if (!line.isBlank()) {
                mEntry = null;
                if (mBuffer != null && CUT_ENTRY.matcher(line).matches()) {
                    mNotes.add(":" + (i + 1), "dropped; not an entry: " + line.strip());
                }
            }
        }
        end();
        return mBuffers;
    }

    private void begin(String line, int number) {
        end();
        if (line.contains("Not allocated")) {
            mNotes.add(":" + number, "the buffer is not allocated");
            return;
        }
        Matcher size = SIZE.matcher(line);
        mAnnounced = size.find() ? Integer.parseInt(size.group(1)) : -1;
        mBuffer = new ArrayList<>();
        mBufferLine = number;
        mBuffers.add(mBuffer);
    }

    private void end() {
        if (mBuffer != null && mAnnounced >= 0 && mAnnounced != mBuffer.size()) {
            mNotes.add(":" + mBufferLine, "expected a buffer of " + mAnnounced + " entries, found "
                    + mBuffer.size());
        }
        mBuffer = null;
        mEntry = null;
        mAnnounced = -1;
    }

    // If the closing bracket is missing, drops the last value, which may lack digits. Keeps a value that must
    // be complete: one before a blank, or a rational, which ends with a parenthesis.
    private void addValues(DumpEntry entry, String line, int number) {
        if (entry.values().size() > Math.min(entry.count(), MOST_VALUES)) {
            return;
        }
        String stripped = line.stripTrailing();
        boolean isWhole = stripped.endsWith("]");
        String text = stripped.substring(1, stripped.length() - (isWhole ? 1 : 0));
        List<String> values = new ArrayList<>();
        if (entry.type().equals("rational")) {
            Matcher rational = RATIONAL.matcher(text);
            while (rational.find()) {
                values.add(rational.group(1) + "/" + rational.group(2));
            }
        } else if (!text.isBlank()) {
            values.addAll(List.of(text.strip().split("\\s+")));
        }
        if (!isWhole) {
            mNotes.add(":" + number, "the line is truncated");
            if (!values.isEmpty() && line.equals(stripped) && !entry.type().equals("rational")) {
                values.remove(values.size() - 1);
            }
        }
        entry.values().addAll(values);
    }
}
