#ifndef KVCART_CATALOGUE_KVFLOATCOMPAREREL_H
#define KVCART_CATALOGUE_KVFLOATCOMPAREREL_H

// Relative comparison of doubles, the one place where the library decides that
// two numbers are "the same". The usual tolerance is a relative 1e-12.
class CKvFloatCompareRel
{
public:
    static constexpr double DefaultTolerance = 1e-12;

    // True when x and y differ relatively by more than |tol|. False when x == y
    // exactly; a NaN never differs (every comparison with it is false).
    static bool NotEqual(double x, double y, double tol);

    // True when x == y exactly, or when |x - y| / max(|x|, |y|) <= |tol|.
    // The exact test comes first, so two zeros are close without a division by
    // zero; a NaN is never close to anything.
    static bool Close(double x, double y, double tol = DefaultTolerance);
};

#endif
