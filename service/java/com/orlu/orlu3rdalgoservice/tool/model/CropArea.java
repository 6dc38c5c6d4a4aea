package com.orlu.orlu3rdalgoservice.tool.model;

/**
 * The area that cropping an image keeps.
 *
 * @param x the first column, -1 to centre the area
 * @param y the first row, -1 to centre the area
 */
public record CropArea(int x, int y, int width, int height) {
    /**
     * The first column and the width are multiples of this, because packed formats store groups of four
     * samples. The rule applies to all formats, so that all images get the same area.
     */
    private static final int COLUMNS = 4;
    private static final int ROWS = 2;

    /** Parses "WIDTH,HEIGHT" or "X,Y,WIDTH,HEIGHT"; throws IllegalArgumentException for an invalid area. */
    public static CropArea parse(String text) {
        if (!text.matches("\\d{1,6},\\d{1,6}(,\\d{1,6},\\d{1,6})?")) {
            throw new IllegalArgumentException(
                    "--crop: expected WIDTH,HEIGHT or X,Y,WIDTH,HEIGHT, found " + text);
        }
        String[] parts = text.split(",");
        int size = parts.length - 2;
        CropArea area = new CropArea(size == 0 ? -1 : Integer.parseInt(parts[0]),
                size == 0 ? -1 : Integer.parseInt(parts[1]), Integer.parseInt(parts[size]),
                Integer.parseInt(parts[size + 1]));
        if (area.width < 1 || area.height < 1 || area.width % COLUMNS != 0 || area.height % ROWS != 0
                || area.x > 0 && area.x % COLUMNS != 0 || area.y > 0 && area.y % ROWS != 0) {
            throw new IllegalArgumentException(
                    "--crop: expected X and WIDTH in multiples of 4, Y and HEIGHT in multiples of 2, and no "
                    + "empty area, found " + text);
        }
        return area;
    }

    /** Places the area in an image. If it doesn't fit, throws IllegalArgumentException and names `image`. */
    CropArea in(int imageWidth, int imageHeight, String image) {
        CropArea placed = new CropArea(x < 0 ? (imageWidth - width) / 2 / COLUMNS * COLUMNS : x,
                y < 0 ? (imageHeight - height) / 2 / ROWS * ROWS : y, width, height);
        if (placed.x < 0 || placed.y < 0 || placed.x + width > imageWidth
                || placed.y + height > imageHeight) {
            throw new IllegalArgumentException("--crop: " + this + " exceeds " + image
                    + " of " + imageWidth + "x" + imageHeight);
        }
        return placed;
    }

    /** Returns, for example, "320x240 from 16,8", or only "320x240" for an area to centre. */
    @Override
    public String toString() {
        return width + "x" + height + (x < 0 ? "" : " from " + x + "," + y);
    }
}
