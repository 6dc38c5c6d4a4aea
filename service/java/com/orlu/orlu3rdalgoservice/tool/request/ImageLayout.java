package com.orlu.orlu3rdalgoservice.tool.request;

import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.json.Json;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.nio.file.Path;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * The description of an image, exactly as a recorder found it, even if it is inconsistent.
 *
 * @param format     the native side's name of the format
 * @param rowStrides bytes per row of each plane; null if the image had no such array
 * @param planeSizes bytes of each plane; null if the image had no such array
 * @param memory     "shared", "hardware" or "none"
 * @param buffer     width, height and format of a recorded hardware buffer; empty for other memory
 * @param size       size of the image's memory, in bytes; 0 if not recorded
 * @param file       the file with the image's bytes; null if they were not recorded or are all 0
 * @param kept       the reason why the bytes were not recorded; empty if there is none
 * @param frame      index of the frame that an input belongs to; -1 if unknown
 */
public record ImageLayout(String format, int width, int height, int[] rowStrides, int[] planeSizes,
        String memory, int[] buffer, int size, RecordedFile file, String kept, int frame) {
    private static final int MOST_PLANES = 16;
    private static final List<String> MEMORIES = List.of("shared", "hardware", "none");

    /** Returns the description of an image in this process. */
    public static ImageLayout of(VImageIPC image) {
        String memory = image.mImageDataHwbuff != null ? "hardware"
                : image.mImageDataShmem == null ? "none" : "shared";
        return new ImageLayout(image.mFormat, image.mWidth, image.mHeight,
                image.mRowStrides == null ? null : image.mRowStrides.clone(),
                image.mPlaneSizes == null ? null : image.mPlaneSizes.clone(), memory, new int[0], 0, null,
                "", -1);
    }

    /**
     * Returns readable names and values of the fields that describe the pixels. The native side may change
     * some of them.
     */
    public Map<String, String> fields() {
        Map<String, String> fields = new LinkedHashMap<>();
        fields.put("format", format);
        fields.put("width", Integer.toString(width));
        fields.put("height", Integer.toString(height));
        fields.put("row strides", Arrays.toString(rowStrides));
        fields.put("plane sizes", Arrays.toString(planeSizes));
        return fields;
    }

    /** Reads an image's description from the recording in this folder. */
    public static ImageLayout read(Path folder, Json image) throws MistakeException {
        image.allowing("format", "width", "height", "rowStrides", "planeSizes", "frame", "memory", "buffer",
                "size", "file", "crc", "kept");
        String memory = image.require("memory").string();
        if (!MEMORIES.contains(memory)) {
            throw image.get("memory").needsName("one of " + String.join(", ", MEMORIES), MEMORIES);
        }
        int size = whole(image, "size", 0, RecordedFile.MOST_BYTES, 0);
        RecordedFile file = image.has("file")
                ? RecordedFile.named(folder, image.get("file"), size, image.require("crc").string()) : null;
        int[] buffer = memory.equals("hardware") ? numbers(image.require("buffer").list(3)) : new int[0];
        return new ImageLayout(image.require("format").string(),
                whole(image, "width", Integer.MIN_VALUE, Integer.MAX_VALUE, 0),
                whole(image, "height", Integer.MIN_VALUE, Integer.MAX_VALUE, 0),
                planes(image.require("rowStrides")), planes(image.require("planeSizes")), memory,
                buffer, size, file, image.has("kept") ? image.get("kept").string() : "",
                whole(image, "frame", 0, Integer.MAX_VALUE, -1));
    }

    // Throws on a mistake. Json.integer() with a name would only note the mistake and continue.
    private static int whole(Json image, String name, int least, int most, int absent)
            throws MistakeException {
        return image.has(name) ? image.get(name).integer(least, most) : absent;
    }

    private static int[] planes(Json field) throws MistakeException {
        if (field.isNull()) {
            return null;
        }
        List<Json> elements = field.list();
        if (elements.size() > MOST_PLANES) {
            throw field.error("expected at most " + MOST_PLANES + " planes, found " + elements.size());
        }
        return numbers(elements);
    }

    private static int[] numbers(List<Json> elements) throws MistakeException {
        int[] numbers = new int[elements.size()];
        for (int i = 0; i < numbers.length; ++i) {
            numbers[i] = elements.get(i).integer(Integer.MIN_VALUE, Integer.MAX_VALUE);
        }
        return numbers;
    }

    /** Returns the description as JSON, as a recording contains it. */
    public Map<String, Object> json() {
        Map<String, Object> json = JsonWriter.object("format", format, "width", width, "height", height,
                "rowStrides", rowStrides, "planeSizes", planeSizes, "memory", memory, "size", size);
        if (frame >= 0) {
            json.put("frame", frame);
        }
        if (buffer.length > 0) {
            json.put("buffer", buffer);
        }
        if (file != null) {
            json.put("file", file.path().getFileName().toString());
            json.put("crc", file.crc());
        }
        if (!kept.isEmpty()) {
            json.put("kept", kept);
        }
        return json;
    }

    /** Returns the image with another file, or without one if `other` is null. `reason` replaces `kept`. */
    public ImageLayout withFile(RecordedFile other, String reason) {
        return new ImageLayout(format, width, height, rowStrides, planeSizes, memory, buffer,
                other == null ? size : other.size(), other, reason, frame);
    }

    /** Returns text such as "NV21 632x416, shared". */
    public String text() {
        return format + " " + width + "x" + height + ", " + memory;
    }

    /** The bytes; null if they were not recorded or are all 0. Throws if the file is missing or damaged. */
    public byte[] bytes() throws MistakeException {
        return file == null ? null : file.bytes();
    }
}
