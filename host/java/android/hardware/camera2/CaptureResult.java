package android.hardware.camera2;

import android.hardware.camera2.impl.CameraMetadataNative;
import android.hardware.camera2.impl.TagTable;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/** What the camera reported about one frame. */
public class CaptureResult {
    // Read by native code that serialises it.
    private final CameraMetadataNative mResults;

    public CaptureResult(CameraMetadataNative results) {
        mResults = results;
    }

    /** The tag's value as the key's type; null when it is absent. Throws for a tag that no table knows. */
    public <T> T get(Key<T> key) {
        return mResults.lookUp(key.getName(), key.mType);
    }

    /** The keys of the tags that are there. */
    public List<Key<?>> getKeys() {
        List<Key<?>> keys = new ArrayList<>();
        for (String tag : mResults.tags()) {
            keys.add(new Key<>(tag, TagTable.typeOf(tag).stored()));
        }
        return Collections.unmodifiableList(keys);
    }

    /** A tag's name and the type that its value is asked for in. */
    public static final class Key<T> {
        private final String mName;
        private final Class<T> mType;

        public Key(String name, Class<T> type) {
            if (name == null || type == null) {
                throw new NullPointerException("Key needs a name and a type");
            }
            mName = name;
            mType = type;
        }

        public String getName() {
            return mName;
        }
    }
}
