import java.awt.image.BufferedImage;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.Map;
import java.util.TreeMap;

import javax.imageio.ImageIO;

/** Prints what a JPEG file shows and says of itself: size, a checksum of its pixels, and some EXIF values. */
public final class PhotoFacts {
    private static final int APP1 = 0xFFE1;
    private static final int EXIF_DIRECTORY = 0x8769;
    private static final int RATIONAL = 5;
    private static final Map<Integer, String> SHOWN =
            Map.of(0x829A, "exposure", 0x829D, "f", 0x8827, "iso", 0x920A, "focal");

    private final Map<String, Double> mValues = new TreeMap<>();
    private ByteBuffer mTiff;

    private void readDirectory(int at) {
        for (int i = 0; i < mTiff.getShort(at); ++i) {
            int entry = at + 2 + 12 * i;
            int tag = mTiff.getShort(entry) & 0xFFFF;
            if (tag == EXIF_DIRECTORY) {
                readDirectory(mTiff.getInt(entry + 8));
            } else if (SHOWN.containsKey(tag)) {
                mValues.put(SHOWN.get(tag), value(entry));
            }
        }
    }

    private double value(int entry) {
        if (mTiff.getShort(entry + 2) != RATIONAL) {
            return mTiff.getShort(entry + 8) & 0xFFFF;
        }
        int at = mTiff.getInt(entry + 8);
        return (double) Integer.toUnsignedLong(mTiff.getInt(at)) / Integer.toUnsignedLong(mTiff.getInt(at + 4));
    }

    /** The file is the only argument. */
    public static void main(String[] arguments) throws Exception {
        byte[] file = Files.readAllBytes(Path.of(arguments[0]));
        BufferedImage image = ImageIO.read(Path.of(arguments[0]).toFile());
        int width = image.getWidth();
        int[] pixels = image.getRGB(0, 0, width, image.getHeight(), null, 0, width);
        PhotoFacts facts = new PhotoFacts();
        // The EXIF segment must be the first, and little-endian as this library writes it.
        if ((ByteBuffer.wrap(file).getShort(2) & 0xFFFF) == APP1) {
            facts.mTiff = ByteBuffer.wrap(file, 12, file.length - 12).slice().order(ByteOrder.LITTLE_ENDIAN);
            facts.readDirectory(facts.mTiff.getInt(4));
        }
        System.out.println(width + "x" + image.getHeight() + " " + facts.mValues);
        System.out.println("pixels " + Arrays.hashCode(pixels));
    }
}
