package com.orlu.orlu3rdalgoservice.tool.image;

import java.lang.ref.SoftReference;
import java.nio.file.Path;

/** Photos that frames are made of. The last one is kept: it is checked first, and used soon after. */
public final class Photos {
    private Path mLastPath;
    private SoftReference<Picture> mLast = new SoftReference<>(null);

    /** The photo of a file, null when it can't be read as one. */
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
