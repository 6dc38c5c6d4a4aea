package android.hardware.camera2;

import android.hardware.camera2.impl.CameraMetadataNative;
import android.hardware.camera2.impl.TagTable;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/** The camera's report about one frame. */
public class CaptureResult {
    // Native code reads this field to serialise the result.
    private final CameraMetadataNative mResults;

    public CaptureResult(CameraMetadataNative results) {
        mResults = results;
    }

    /** Returns the value as the key's type; null if absent. Throws for an unknown tag or a wrong type. */
    public <T> T get(Key<T> key) {
        return mResults.lookUp(key.getName(), key.mType);
    }

    /** Returns the keys of the tags that are present. */
    public List<Key<?>> getKeys() {
        List<Key<?>> keys = new ArrayList<>();
        for (String tag : mResults.tags()) {
            keys.add(new Key<>(tag, TagTable.typeOf(tag).stored()));
        }
        return Collections.unmodifiableList(keys);
    }

    /** A tag's name and the requested type of its value. */
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
