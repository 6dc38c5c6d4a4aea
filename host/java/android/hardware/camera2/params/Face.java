package android.hardware.camera2.params;

import android.graphics.Rect;

/** A face that the camera found. Coordinates are in the active array. */
public final class Face {
    private final Rect mBounds;
    private final int mScore;

    public Face(Rect bounds, int score) {
        mBounds = new Rect(bounds);
        mScore = score;
    }

    public Rect getBounds() {
        return new Rect(mBounds);
    }

    public int getScore() {
        return mScore;
    }
}
