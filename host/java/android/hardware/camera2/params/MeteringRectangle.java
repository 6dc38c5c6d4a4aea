package android.hardware.camera2.params;

import android.graphics.Rect;

/** A metering region with its weight. Coordinates are in the active array. */
public final class MeteringRectangle {
    private final Rect mRect;
    private final int mWeight;

    public MeteringRectangle(Rect rect, int meteringWeight) {
        mRect = new Rect(rect);
        mWeight = meteringWeight;
    }

    public MeteringRectangle(int x, int y, int width, int height, int meteringWeight) {
        this(new Rect(x, y, x + width, y + height), meteringWeight);
    }

    public Rect getRect() {
        return new Rect(mRect);
    }

    public int getMeteringWeight() {
        return mWeight;
    }
}
