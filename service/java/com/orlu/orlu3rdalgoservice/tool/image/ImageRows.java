package com.orlu.orlu3rdalgoservice.tool.image;

import java.awt.image.BufferedImage;
import java.awt.image.DataBufferByte;
import java.awt.image.IndexColorModel;

/** The pixels of a BufferedImage. */
record ImageRows(BufferedImage image) implements PixelRows {
    @Override
    public int width() {
        return image.getWidth();
    }

    @Override
    public int height() {
        return image.getHeight();
    }

    @Override
    public void read(int y, float[] to) {
        boolean isGray = image.getRaster().getNumBands() == 1
                && !(image.getColorModel() instanceof IndexColorModel);
        if (isGray) {
            readGray(y, to);
        } else if (image.getType() == BufferedImage.TYPE_3BYTE_BGR && image.getRaster().getParent() == null) {
            // Most JPEGs and 8-bit RGB PNGs have this type; their samples are sRGB already.
            byte[] samples = ((DataBufferByte) image.getRaster().getDataBuffer()).getData();
            int start = y * width() * CHANNELS;
            for (int at = 0; at < width() * CHANNELS; at += CHANNELS) {
                to[at] = samples[start + at + 2] & 255;
                to[at + 1] = samples[start + at + 1] & 255;
                to[at + 2] = samples[start + at] & 255;
            }
        } else {
            int[] row = image.getRGB(0, y, width(), 1, null, 0, width());
            for (int x = 0, at = 0; x < row.length; ++x, at += CHANNELS) {
                to[at] = row[x] >> 16 & 255;
                to[at + 1] = row[x] >> 8 & 255;
                to[at + 2] = row[x] & 255;
            }
        }
    }

    // Avoids getRGB(): it treats gray samples as linear, and would brighten them.
    private void readGray(int y, float[] to) {
        float scale = WHITE / ((1 << image.getColorModel().getComponentSize(0)) - 1);
        for (int x = 0, at = 0; x < width(); ++x, at += CHANNELS) {
            float gray = image.getRaster().getSample(x, y, 0) * scale;
            to[at] = to[at + 1] = to[at + 2] = PixelRows.clip(gray);
        }
    }
}
