package android.hardware.camera2;

import android.hardware.camera2.impl.CameraMetadataNative;

/** The properties of a camera. */
public class CameraCharacteristics {
    private final CameraMetadataNative mProperties;

    public CameraCharacteristics(CameraMetadataNative properties) {
        mProperties = properties;
    }

    /** Returns the value as the key's type; null if absent. Throws for an unknown tag or a wrong type. */
    public <T> T get(Key<T> key) {
        return mProperties.get(key.getName(), key.mType);
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
