package android.util;

/** A fraction, not reduced. */
public final class Rational {
    private final int mNumerator;
    private final int mDenominator;

    public Rational(int numerator, int denominator) {
        mNumerator = numerator;
        mDenominator = denominator;
    }

    public int getNumerator() {
        return mNumerator;
    }

    public int getDenominator() {
        return mDenominator;
    }

    @Override
    public String toString() {
        return mNumerator + "/" + mDenominator;
    }
}
