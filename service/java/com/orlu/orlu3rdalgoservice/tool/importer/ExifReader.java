package com.orlu.orlu3rdalgoservice.tool.importer;

import com.drew.imaging.ImageProcessingException;
import com.drew.imaging.jpeg.JpegSegmentReader;
import com.drew.imaging.jpeg.JpegSegmentType;
import com.drew.imaging.tiff.TiffMetadataReader;
import com.drew.imaging.tiff.TiffReader;
import com.drew.lang.ByteArrayReader;
import com.drew.lang.GeoLocation;
import com.drew.lang.Rational;
import com.drew.metadata.Directory;
import com.drew.metadata.Metadata;
import com.drew.metadata.Tag;
import com.drew.metadata.exif.ExifDirectoryBase;
import com.drew.metadata.exif.ExifThumbnailDirectory;
import com.drew.metadata.exif.ExifTiffHandler;
import com.drew.metadata.exif.GpsDirectory;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.imagefile.ImageFileKind;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;
import com.orlu.orlu3rdalgoservice.tool.text.Printable;

import java.io.IOException;
import java.lang.reflect.Array;
import java.nio.charset.StandardCharsets;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;

/** Converts the EXIF block of a DNG, TIFF or JPEG file to the tags of a frame. */
final class ExifReader {
    private static final String EXIF = "Exif\0\0";
    private static final int TAG_WHITE_LEVEL = 0xC61D;
    private static final double NANOSECONDS = 1e9;
    /** EXIF's colour filter patterns (0 red, 1 green, 2 blue), indexed by colorFilterArrangement. */
    private static final List<String> PATTERNS =
            List.of("[0, 1, 1, 2]", "[1, 0, 2, 1]", "[1, 2, 0, 1]", "[2, 1, 1, 0]");
    private static final int FLASH_FIRED = 1;

    private final Notes mNotes;
    private final Metadata mMetadata;
    private final ImportedFrame mFrame = new ImportedFrame();
    private final Set<Integer> mTaken = new TreeSet<>();

    private ExifReader(Metadata metadata, Notes notes) {
        mMetadata = metadata;
        mNotes = notes;
    }

    /** Reads a JPEG, DNG or other TIFF file. Throws if the file can't be read; adds notes on other damage. */
    static ImportedFrame read(Path file, ImageFileKind kind, Notes notes) throws MistakeException {
        try {
            Metadata metadata = kind == ImageFileKind.JPEG ? ofJpeg(file)
                    : TiffMetadataReader.readMetadata(file.toFile());
            ExifReader reader = new ExifReader(metadata, notes);
            reader.addAll();
            return reader.mFrame;
        } catch (ImageProcessingException | IOException | RuntimeException e) {
            // The EXIF library throws unchecked exceptions for damaged files.
            throw new MistakeException(file.toString(), "", "can't be read: " + Printable.message(e));
        }
    }

    // Avoids the EXIF library's JPEG reader, which prints a stack trace if an EXIF block is damaged.
    private static Metadata ofJpeg(Path file) throws ImageProcessingException, IOException {
        Metadata metadata = new Metadata();
        for (byte[] segment : JpegSegmentReader.readSegments(file.toFile(), List.of(JpegSegmentType.APP1))
                .getSegments(JpegSegmentType.APP1)) {
            if (new String(segment, StandardCharsets.ISO_8859_1).startsWith(EXIF)) {
                new TiffReader().processTiff(
                        new ByteArrayReader(segment), new ExifTiffHandler(metadata, null), EXIF.length());
            }
        }
        return metadata;
    }

    private void addAll() {
        Double exposure = number(ExifDirectoryBase.TAG_EXPOSURE_TIME);
        if (exposure != null) {
            put("android.sensor.exposureTime", whole(exposure * NANOSECONDS), "ExposureTime");
        }
        put("android.sensor.sensitivity", number(ExifDirectoryBase.TAG_ISO_EQUIVALENT), "ISO");
        put("android.lens.aperture", number(ExifDirectoryBase.TAG_FNUMBER), "FNumber");
        put("android.lens.focalLength", number(ExifDirectoryBase.TAG_FOCAL_LENGTH), "FocalLength");
        put("orlu.feedback.focalLengthIn35mm", number(ExifDirectoryBase.TAG_35MM_FILM_EQUIV_FOCAL_LENGTH),
                "FocalLengthIn35mmFilm");
        put("android.sensor.info.whiteLevel", number(TAG_WHITE_LEVEL), "WhiteLevel");
        Double distance = number(ExifDirectoryBase.TAG_SUBJECT_DISTANCE);
        put("android.lens.focusDistance", distance == null ? null : 1 / distance, "SubjectDistance");
        addFlash();
        addChoice("android.jpeg.orientation", ExifDirectoryBase.TAG_ORIENTATION, "Orientation",
                new int[] {-1, 0, -1, 180, -1, -1, 90, -1, 270});
        // EXIF only distinguishes automatic (0) and manual (1) white balance. Manual becomes "off".
        addChoice("android.control.awbMode", ExifDirectoryBase.TAG_WHITE_BALANCE_MODE, "WhiteBalance",
                new int[] {1, 0});
        addPattern();
        addLocation();
        noteOthers();
    }

    private void addFlash() {
        Double flash = number(ExifDirectoryBase.TAG_FLASH);
        if (flash != null) {
            boolean isFired = (flash.intValue() & FLASH_FIRED) != 0;
            put("android.flash.mode", isFired ? 1.0 : 0.0, "Flash");
            put("android.flash.state", isFired ? 3.0 : 2.0, "Flash");
        }
    }

    private void addChoice(String tag, int exifTag, String name, int[] values) {
        Double number = number(exifTag);
        if (number == null) {
            return;
        }
        int index = number.intValue();
        if (index >= 0 && index < values.length && values[index] >= 0) {
            put(tag, (double) values[index], name);
        } else {
            mNotes.add(name, tag + " dropped; no equivalent for " + index);
        }
    }

    private void addPattern() {
        for (int exifTag : List.of(
                ExifDirectoryBase.TAG_CFA_PATTERN_2, ExifDirectoryBase.TAG_CFA_PATTERN)) {
            Directory directory = holding(exifTag);
            byte[] pattern = directory == null ? null : directory.getByteArray(exifTag);
            // TAG_CFA_PATTERN begins with the pattern's width and height, 16 bits each.
            int start = exifTag == ExifDirectoryBase.TAG_CFA_PATTERN ? 4 : 0;
            if (pattern != null && pattern.length >= start + 4) {
                mTaken.add(exifTag);
                byte[] colors = Arrays.copyOfRange(pattern, start, pattern.length);
                int number = PATTERNS.indexOf(Arrays.toString(colors));
                if (number >= 0) {
                    put("android.sensor.info.colorFilterArrangement", (double) number, "CFAPattern");
                    return;
                }
                mNotes.add("CFAPattern", "dropped; unknown arrangement " + Arrays.toString(colors));
            }
        }
    }

    private void addLocation() {
        GpsDirectory gps = mMetadata.getFirstDirectoryOfType(GpsDirectory.class);
        GeoLocation place = gps == null ? null : gps.getGeoLocation();
        if (gps == null || place == null) {
            return;
        }
        if (!Double.isFinite(place.getLatitude()) || !Double.isFinite(place.getLongitude())) {
            mNotes.add("GPS", "android.jpeg.gpsLocation dropped; the coordinates are not finite");
            return;
        }
        Map<String, Object> location = JsonWriter.object(
                "latitude", place.getLatitude(), "longitude", place.getLongitude());
        Rational altitude = gps.getRational(GpsDirectory.TAG_ALTITUDE);
        if (altitude != null && altitude.getDenominator() != 0) {
            Integer below = gps.getInteger(GpsDirectory.TAG_ALTITUDE_REF);
            location.put("altitude", (below != null && below == 1 ? -1 : 1) * altitude.doubleValue());
        }
        if (gps.getGpsDate() != null) {
            location.put("time", gps.getGpsDate().getTime());
        }
        mFrame.put("android.jpeg.gpsLocation", location, "GPS", mNotes);
    }

    private void put(String tag, Double value, String place) {
        if (value != null && Double.isFinite(value)) {
            boolean isWhole = value == Math.rint(value) && Math.abs(value) < 1L << 53;
            mFrame.put(tag, isWhole ? (Object) value.longValue() : value, place, mNotes);
        } else if (value != null) {
            mNotes.add(place, tag + " dropped; not a finite number");
        }
    }

    private static double whole(double value) {
        return Double.isFinite(value) ? Math.rint(value) : value;
    }

    // Returns the first directory that contains the tag, or null. Skips directories of thumbnails.
    private Directory holding(int tag) {
        for (Directory directory : mMetadata.getDirectoriesOfType(ExifDirectoryBase.class)) {
            if (directory.containsTag(tag) && !(directory instanceof ExifThumbnailDirectory)) {
                return directory;
            }
        }
        return null;
    }

    private Double number(int tag) {
        Directory directory = holding(tag);
        if (directory == null) {
            return null;
        }
        mTaken.add(tag);
        Double number = first(directory, tag);
        if (number == null) {
            mNotes.add(directory.getTagName(tag), "dropped; not a number");
        }
        return number;
    }

    // Returns the first of a tag's numbers; an ISO tag may have one number for each standard. Divides
    // rationals without the EXIF library, which reads 0/0 as 0.
    private static Double first(Directory directory, int tag) {
        Object held = directory.getObject(tag);
        if (held != null && held.getClass().isArray() && Array.getLength(held) > 0) {
            held = Array.get(held, 0);
        }
        if (held instanceof Rational ratio) {
            return ratio.getNumerator() / (double) ratio.getDenominator();
        }
        return held instanceof Number number ? Double.valueOf(number.doubleValue())
                : directory.getDoubleObject(tag);
    }

    private void noteOthers() {
        List<String> names = new ArrayList<>();
        for (Directory directory : mMetadata.getDirectoriesOfType(ExifDirectoryBase.class)) {
            for (Tag tag : directory.getTags()) {
                if (!mTaken.contains(tag.getTagType()) && !(directory instanceof GpsDirectory)
                        && !(directory instanceof ExifThumbnailDirectory)) {
                    names.add(tag.hasTagName() ? tag.getTagName() : tag.getTagTypeHex());
                }
            }
            directory.getErrors().forEach(error -> mNotes.add("EXIF", "damaged: " + error));
        }
        if (!names.isEmpty()) {
            mNotes.add("EXIF", "no tag for " + String.join(", ", names));
        }
    }
}
