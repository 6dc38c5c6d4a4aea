package com.orlu.orlu3rdalgoservice.tool.image;

import java.lang.ref.SoftReference;
import java.nio.file.Path;

/**
 * Loads the photos that frames are made from. Caches the last photo, because a request's photo is loaded for
 * its check and again soon after for its frames.
 */
public final class Photos {
    private Path mLastPath;
    private SoftReference<Picture> mLast = new SoftReference<>(null);

    /** Returns the photo in a file; null if it can't be decoded. */
    public Picture load(Path path) {
        Picture photo = path.equals(mLastPath) ? mLast.get() : null;
        if (photo == null) {
            photo = FrameSynthesis.load(path);
            mLastPath = path;
            mLast = new SoftReference<>(photo);
        }
        return photo;
    }
}
